#include "platform/reg_text.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "orlo/locale.h"
#include "platform/registry.h"
#include "platform/utf16.h"

namespace {

constexpr std::string_view kHeader4 = "REGEDIT4";
constexpr std::u16string_view kHeader4Wide = u"REGEDIT4";
constexpr std::u16string_view kHeader5 = u"Windows Registry Editor Version 5.00";

bool is_text(uint32_t type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

bool is_blank(char16_t unit) {
  return unit == u' ' || unit == u'\t';
}
bool is_line_end(char16_t unit) {
  return unit == u'\r' || unit == u'\n';
}

/// The digit's worth, or -1.
int hex_digit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  return -1;
}

std::u16string widen(std::string_view text) {
  return ORLO::system_locale().widen(text.data(), text.size());
}

std::u16string decode(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return utf16_from_bytes(bytes.substr(2));
  if (bytes.starts_with("\xEF\xBB\xBF")) return utf16_from_utf8(bytes.substr(3));
  if (bytes.starts_with(kHeader4)) return widen(bytes);
  return utf16_from_utf8(bytes);
}

/// Why a key's path can't be one; null if it can.
const char* fault_of_path(std::u16string_view path) {
  size_t depth = 0;
  while (true) {
    const size_t end = path.find(u'\\');
    const size_t length = std::min(end, path.size());
    if (length == 0) return "a key without a name";
    if (length > kMaxKeyName) return "the name of a key is too long";
    if (path.substr(0, length).find(u'\0') != path.npos) return "a NUL in the name of a key";
    if (++depth > kMaxKeyDepth) return "keys are nested too deeply";
    if (end == std::u16string_view::npos) return nullptr;
    path.remove_prefix(end + 1);
  }
}

class Parser {
 public:
  explicit Parser(std::u16string text) : text_(std::move(text)) {}

  RegText run() {
    bool good = header();
    while (good && !at_end())
      good = line();
    return std::move(result_);
  }

 private:
  bool at_end() const { return position_ == text_.size(); }
  bool at_line_end() const { return at_end() || is_line_end(text_[position_]); }
  bool at(char16_t unit) const { return !at_end() && text_[position_] == unit; }
  std::u16string_view rest() const { return std::u16string_view(text_).substr(position_); }

  bool fail(const char* why) {
    result_.error = "line " + std::to_string(line_) + ": " + why;
    return false;
  }

  void skip_blanks() {
    while (!at_end() && is_blank(text_[position_]))
      ++position_;
  }

  bool skip(std::u16string_view wanted) {
    if (!rest().starts_with(wanted)) return false;
    position_ += wanted.size();
    return true;
  }

  std::u16string_view take_line() {
    const size_t start = position_;
    while (!at_line_end())
      ++position_;
    return std::u16string_view(text_).substr(start, position_ - start);
  }

  /// Steps over one line end: CR LF, LF or CR.
  void next_line() {
    if (at_end()) return;
    position_ += rest().starts_with(u"\r\n") ? 2u : 1u;
    ++line_;
  }

  /// Steps over blanks, a comment and the line's end; false if anything else stands there.
  bool end_of_line() {
    skip_blanks();
    if (at(u';')) take_line();
    if (!at_line_end()) return false;
    next_line();
    return true;
  }

  bool header() {
    const bool version4 = skip(kHeader4Wide);
    if (!version4 && !skip(kHeader5)) return fail("no header of a registry text");
    ansi_ = version4;
    return end_of_line() || fail("no header of a registry text");
  }

  bool line() {
    skip_blanks();
    if (at(u'[')) return key();
    if (at(u'"') || at(u'@')) return value();
    return end_of_line() || fail("neither a key, a value nor a comment");
  }

  bool key() {
    ++position_;
    const std::u16string_view whole = take_line();
    const size_t close = whole.rfind(u']');
    if (close == std::u16string_view::npos) return fail("a key without its closing bracket");
    position_ -= whole.size() - close - 1;
    std::u16string_view path = whole.substr(0, close);
    const bool removes = path.starts_with(u'-');
    if (removes) path.remove_prefix(1);
    if (const char* fault = fault_of_path(path)) return fail(fault);
    has_key_ = true;
    add(removes ? RegStatement::Kind::remove_key : RegStatement::Kind::key, std::u16string(path));
    return end_of_line() || fail("text behind a key");
  }

  bool value() {
    if (!has_key_) return fail("a value before any key");
    auto name = at(u'@') ? default_name() : quoted();
    if (!name) return fail("the name of a value without its closing quote");
    if (name->size() > kMaxValueName) return fail("the name of a value is too long");
    if (name->find(u'\0') != name->npos) return fail("a NUL in the name of a value");
    skip_blanks();
    if (!skip(u"=")) return fail("a value without its equals sign");
    skip_blanks();
    add(RegStatement::Kind::value, std::move(*name));
    const bool good =
        data(result_.statements.back()) && (end_of_line() || fail("text behind a value"));
    if (!good) result_.statements.pop_back();
    return good;
  }

  std::optional<std::u16string> default_name() {
    ++position_;
    return std::u16string();
  }

  /// Reads a text in quotes, which may hold line ends; a backslash stands in front of a quote or
  /// of another backslash.
  std::optional<std::u16string> quoted() {
    std::u16string result;
    for (++position_; !at_end(); ++position_) {
      char16_t unit = text_[position_];
      if (unit == u'"') {
        ++position_;
        return result;
      }
      if (unit == u'\\' && ++position_ == text_.size()) break;
      unit = text_[position_];
      if (unit == u'\n') ++line_;
      result.push_back(unit);
    }
    return std::nullopt;
  }

  bool data(RegStatement& statement) {
    if (at(u'"')) return text_data(statement);
    if (skip(u"dword:")) return number_data(statement);
    if (skip(u"hex")) return byte_data(statement);
    if (!skip(u"-")) return fail("data of an unknown form");
    statement.kind = RegStatement::Kind::remove_value;
    return true;
  }

  bool text_data(RegStatement& statement) {
    auto text = quoted();
    if (!text) return fail("a text without its closing quote");
    text->push_back(u'\0');
    statement.type = kRegSz;
    statement.data = bytes_from_utf16(*text);
    return true;
  }

  bool number_data(RegStatement& statement) {
    const auto number = hex_number();
    if (!number) return fail("a number that is none or too long");
    statement.type = kRegDword;
    for (int shift = 0; shift < 32; shift += 8) {
      statement.data.push_back(static_cast<char>((*number >> shift) & 0xFF));
    }
    return true;
  }

  /// One to eight digits.
  std::optional<uint32_t> hex_number() {
    uint32_t number = 0;
    int digits = 0;
    for (; !at_end() && hex_digit(text_[position_]) >= 0; ++position_, ++digits) {
      if (digits == 8) return std::nullopt;
      number = (number << 4) | static_cast<uint32_t>(hex_digit(text_[position_]));
    }
    if (digits == 0) return std::nullopt;
    return number;
  }

  bool byte_data(RegStatement& statement) {
    statement.type = kRegBinary;
    if (skip(u"(")) {
      const auto type = hex_number();
      if (!type || !skip(u")")) return fail("a type that is none");
      statement.type = *type;
    }
    if (!skip(u":")) return fail("bytes without their colon");
    if (!bytes(statement.data)) return false;
    // The old form holds texts in the code page.
    if (ansi_ && is_text(statement.type)) statement.data = bytes_from_utf16(widen(statement.data));
    return true;
  }

  /// Reads "01,ff,\" with further lines behind each backslash; stops behind the last byte.
  bool bytes(std::string& out) {
    while (true) {
      skip_blanks();
      if (at(u'\\')) {
        ++position_;
        if (!end_of_line()) return fail("text behind a backslash");
        continue;
      }
      if (at_line_end() || at(u';')) return true;
      const auto byte = hex_number();
      if (!byte || *byte > 0xFF) return fail("a byte that is none");
      out.push_back(static_cast<char>(*byte));
      skip_blanks();
      if (!skip(u",")) return true;
    }
  }

  void add(RegStatement::Kind kind, std::u16string name) {
    RegStatement& statement = result_.statements.emplace_back();
    statement.kind = kind;
    statement.name = std::move(name);
    statement.line = line_;
  }

  const std::u16string text_;
  size_t position_ = 0;
  size_t line_ = 1;
  bool ansi_ = false;
  bool has_key_ = false;
  RegText result_;
};

}  // namespace

RegText parse_reg_text(std::string_view text) {
  return Parser(decode(text)).run();
}
