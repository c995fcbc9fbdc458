#include "platform/memory_files.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "orlo/locale.h"
#include "orlo/wildcard.h"
#include "platform/utf16.h"

namespace {

// The buffer that results of the search have to fit into, terminator included.
constexpr size_t kPathBuffer = 260;
constexpr size_t kLongestToExpand = 32000;

/// The code page's characters in upper case; one byte is one character.
std::array<char, 256> upper_table() {
  std::array<char, 256> table;
  const ORLO::Locale& locale = ORLO::system_locale();
  for (size_t code = 0; code < table.size(); ++code) {
    const char character = static_cast<char>(code);
    const std::u16string wide = upcase(locale.widen(&character, 1));
    const std::string narrow = locale.narrow(wide.data(), wide.size());
    table[code] = narrow.size() == 1 ? narrow.front() : character;
  }
  return table;
}

std::string upper(std::string text) {
  static const std::array<char, 256> table = upper_table();
  for (char& character : text)
    character = table[static_cast<unsigned char>(character)];
  return text;
}

bool is_separator(char character) {
  return character == '\\' || character == '/';
}

bool ends_in_separator(std::string_view path) {
  return !path.empty() && is_separator(path.back());
}

/// The path without what the platform overlooks in it, spelled as it was.
std::string full_path(std::string_view path) {
  std::vector<std::string_view> pieces;
  const size_t start = path.find_first_not_of("\\/");
  const bool is_share = start == 2 && path.size() > 2;
  for (size_t at = 0; at <= path.size();) {
    const size_t end = std::min(path.find_first_of("\\/", at), path.size());
    const std::string_view piece = path.substr(at, end - at);
    at = end + 1;
    if (piece.empty() || piece == ".") continue;
    if (piece != "..") {
      pieces.push_back(piece);
    } else if (pieces.size() > 1) {
      pieces.pop_back();
    }
  }
  std::string result = is_share ? "\\" : "";
  for (size_t i = 0; i < pieces.size(); ++i) {
    if (is_share || i > 0) result += '\\';
    result += pieces[i];
  }
  result.resize(result.find_last_not_of(" .") + 1);
  return result;
}

std::string_view last_piece(std::string_view path) {
  const size_t separator = path.find_last_of("\\/:");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::string folder_of(const std::string& path) {
  const size_t separator = path.rfind('\\');
  return separator == std::string::npos ? std::string() : path.substr(0, separator);
}

}  // namespace

void MemoryFiles::add_file(const std::string& path) {
  const std::string full = full_path(path);
  files_.insert(upper(full));
  add_folder(folder_of(full));
}

void MemoryFiles::add_folder(const std::string& path) {
  for (std::string folder = full_path(path); !folder.empty(); folder = folder_of(folder)) {
    folders_.insert(upper(folder));
  }
}

void MemoryFiles::set_variable(const std::string& name, const std::string& value) {
  variables_[upper(name)] = value;
}

void MemoryFiles::add_search_folder(const std::string& path) {
  search_folders_.push_back(path);
}

void MemoryFiles::fail(const std::string& operation) {
  failing_.insert(operation);
}

bool MemoryFiles::is_file(const char* path) {
  return enter("is_file", path) && !ends_in_separator(path) && finds_file(path);
}

bool MemoryFiles::can_open(const char* path) {
  if (!enter("can_open", path)) return false;
  const std::string wanted = upper(full_path(path));
  return folders_.count(wanted) > 0 || (!ends_in_separator(path) && files_.count(wanted) > 0);
}

std::optional<String> MemoryFiles::search_path(const char* name, const char* extension) {
  if (!enter("search_path", name) || *name == '\0') return std::nullopt;
  const std::string plain = name;
  const bool has_extension = last_piece(plain).find('.') != std::string_view::npos;
  const std::string extended = has_extension ? plain : plain + extension;
  std::vector<std::string> candidates;
  if (plain.find_first_of("\\/:") != std::string::npos) {
    candidates = {plain};
    if (!has_extension) candidates.push_back(extended);
  } else {
    for (const std::string& folder : search_folders_) {
      candidates.push_back(folder + '\\');
      candidates.back() += extended;
    }
  }
  return first_existing(candidates);
}

std::optional<String> MemoryFiles::expand_environment(const char* text, size_t limit) {
  if (!enter("expand_environment", text)) return std::nullopt;
  if (std::string_view(text).size() > kLongestToExpand) return std::nullopt;
  std::string result;
  for (std::string_view rest = text; !rest.empty();) {
    const size_t end = rest.front() == '%' ? rest.find('%', 1) : std::string_view::npos;
    const bool named = end != std::string_view::npos;
    // A name that isn't known stays, with both its percent signs.
    const std::string_view piece = rest.substr(0, named ? end + 1 : 1);
    const auto variable =
        named ? variables_.find(upper(std::string(rest.substr(1, end - 1)))) : variables_.end();
    result += variable != variables_.end() ? std::string_view(variable->second) : piece;
    rest.remove_prefix(piece.size());
  }
  if (result.size() >= limit) return std::nullopt;
  return String(result);
}

std::optional<String> MemoryFiles::system_folder() {
  return folder("system_folder", system_folder_);
}

std::optional<String> MemoryFiles::windows_folder() {
  return folder("windows_folder", windows_folder_);
}

std::optional<String> MemoryFiles::folder(const char* operation, const std::string& path) {
  if (!enter(operation, "") || path.size() >= kPathBuffer) return std::nullopt;
  return String(path);
}

/// Logs a call; false if it has to fail.
bool MemoryFiles::enter(const char* operation, const char* argument) {
  calls_.push_back(std::string(operation) + ' ' + argument);
  return failing_.count(operation) == 0;
}

bool MemoryFiles::exists(const std::string& full) const {
  const std::string wanted = upper(full);
  return files_.count(wanted) > 0 || folders_.count(wanted) > 0;
}

/// Whether the first of all that the pattern fits is a file. Each folder apart from a drive's
/// outermost begins with itself and the one above it.
bool MemoryFiles::finds_file(const std::string& pattern) const {
  if (last_piece(pattern).find_first_of("*?") == std::string_view::npos) {
    return files_.count(upper(full_path(pattern))) > 0;
  }
  const std::string wanted = upper(full_path(pattern));
  const std::string folder = folder_of(wanted);
  const String name(std::string(last_piece(wanted)));
  const bool outermost = folder.find('\\') == std::string::npos;
  if (!outermost && ORLO::match_wildcard(".", name.c_str())) return false;
  const auto fits = [&folder, &name](const std::string& path) {
    return folder_of(path) == folder &&
           ORLO::match_wildcard(std::string(last_piece(path)).c_str(), name.c_str());
  };
  const auto file = std::find_if(files_.begin(), files_.end(), fits);
  const auto subfolder = std::find_if(folders_.begin(), folders_.end(), fits);
  if (file == files_.end()) return false;
  return subfolder == folders_.end() || *file < *subfolder;
}

std::optional<String> MemoryFiles::first_existing(
    const std::vector<std::string>& candidates) const {
  for (const std::string& candidate : candidates) {
    const std::string path = full_path(candidate);
    if (!exists(path)) continue;
    if (path.size() >= kPathBuffer) return std::nullopt;
    return String(path);
  }
  return std::nullopt;
}
