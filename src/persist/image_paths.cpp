#include "persist/image_paths.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace {

constexpr char kLineEnd = '\n';
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

void skip_space(std::string_view& text) noexcept {
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
}

/// Takes an index, or -1, from the beginning of `text`. White space must follow it.
std::optional<int32_t> take_index(std::string_view& text) noexcept {
  constexpr int64_t kLargest = std::numeric_limits<int32_t>::max();
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || !is_digit(text.front())) return std::nullopt;
  int64_t number = 0;
  for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1))
    number = std::min(number * 10 + (text.front() - '0'), kLargest + 1);
  if (negative) number = -number;
  if (number < kImageNotLoaded || number > kLargest) return std::nullopt;
  if (text.empty() || kWhiteSpace.find(text.front()) == std::string_view::npos) return std::nullopt;
  return static_cast<int32_t>(number);
}

void load_line(ImageIndexMap& map, std::string_view line) {
  skip_space(line);
  const std::optional<int32_t> index = take_index(line);
  skip_space(line);
  if (!index || line.empty()) return;
  map[String(line.data(), line.data() + line.size())] = *index;
}

/// The next line without its end; false at the end of the file. By windows, as a file may be one
/// line of megabytes.
bool read_line(ORLO::InFile& file, std::string& line) {
  line.clear();
  if (file.peek() == -1) return false;
  while (file.peek() != -1) {
    const std::string_view here = file.window();
    const size_t length = here.find(kLineEnd);
    line.append(here.substr(0, length));
    file.advance(std::min(length, here.size()));
    if (length == std::string_view::npos) continue;
    file.skip();
    break;
  }
  return true;
}

}  // namespace

bool LoadImagePaths(ImageIndexMap& map, ORLO::InFile& file) {
  if (file.failed()) return false;
  std::string line;
  while (read_line(file, line))
    load_line(map, line);
  return true;
}

bool SaveImagePaths(const ImageIndexMap& map, ORLO::OutFile& file) {
  for (const auto& [spec, index] : map) {
    const std::string_view text(spec.c_str(), spec.length());
    if (text.find(kLineEnd) != std::string_view::npos) continue;
    const std::string number = std::to_string(index) + ' ';
    file.write(number.data(), number.size());
    file.write(text.data(), text.size());
    file.put(kLineEnd);
  }
  return true;
}
