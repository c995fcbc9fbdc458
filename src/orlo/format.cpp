#include "orlo/format.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "orlo/exception.h"
#include "orlo/format_reader.h"
#include "orlo/locale.h"
#include "orlo/real_text.h"
#include "orlo/rstring.h"
#include "orlo/system_time.h"

namespace ORLO {
namespace {

using Token = FormatReader::Token;
using Kind = FormatArg::Kind;

/// What one conversion prints, but for the padding.
struct Body {
  std::string_view prefix;  // sign or 0x
  size_t zeros = 0;         // between prefix and text
  std::string_view text;    // in the argument or in `storage`
  std::string storage;

  size_t length() const noexcept { return prefix.size() + zeros + text.size(); }
  void store(std::string&& made) {
    storage = std::move(made);
    text = storage;
  }
};

bool is_one_of(char type, std::string_view types) noexcept {
  return types.find(type) != std::string_view::npos;
}

bool prints_wide(const Conversion& conversion) noexcept {
  if (conversion.is_long || conversion.is_wide) return true;
  return is_one_of(conversion.type, "SC") && !conversion.is_short;
}

/// A piece of text given with a precision may lack its terminator.
std::string_view bounded(const char* text, int precision) noexcept {
  if (text == nullptr) return {};
  if (precision < 0) return text;
  const auto room = static_cast<size_t>(precision);
  const void* const end = room == 0 ? nullptr : std::memchr(text, '\0', room);
  return {text, end == nullptr ? room : static_cast<size_t>(static_cast<const char*>(end) - text)};
}

std::string_view byte_text(const Conversion& conversion, const FormatArg& arg) noexcept {
  if (arg.kind() == Kind::text) {
    return bounded(static_cast<const char*>(arg.pointer()), conversion.precision);
  }
  const String& string = *static_cast<const String*>(arg.pointer());
  if (!conversion.alternate) return bounded(string.c_str(), conversion.precision);
  const std::string_view whole(string.c_str(), string.length());
  return conversion.precision < 0 ? whole
                                  : whole.substr(0, static_cast<size_t>(conversion.precision));
}

/// The runtime's wctomb in its "C" locale: what has no byte of the same number prints nothing.
void add_unit(std::string& text, char16_t unit) {
  if (unit < 0x100) text += static_cast<char>(unit);
}

std::string wide_text(const Conversion& conversion, const FormatArg& arg) {
  const size_t limit =
      conversion.precision < 0 ? std::string::npos : static_cast<size_t>(conversion.precision);
  std::string text;
  if (arg.kind() == Kind::wide_text) {
    const auto* unit = static_cast<const char16_t*>(arg.pointer());
    for (; unit != nullptr && text.size() < limit && *unit != u'\0'; ++unit) {
      add_unit(text, *unit);
    }
  } else {
    const String& string = *static_cast<const String*>(arg.pointer());
    char16_t unit = 0;
    for (size_t at = 0; text.size() < limit && at + sizeof unit <= string.length();
         at += sizeof unit) {
      std::memcpy(&unit, string.c_str() + at, sizeof unit);
      add_unit(text, unit);
    }
  }
  return text;
}

void build_text(Body& body, const Conversion& conversion, const FormatArg& arg) {
  if (prints_wide(conversion)) {
    body.store(wide_text(conversion, arg));
  } else {
    body.text = byte_text(conversion, arg);
  }
}

void build_character(Body& body, const Conversion& conversion, const FormatArg& arg) {
  std::string text;
  if (prints_wide(conversion)) {
    add_unit(text, static_cast<char16_t>(arg.integer()));
  } else {
    text += static_cast<char>(arg.integer());
  }
  body.store(std::move(text));
}

std::string_view sign_text(const Conversion& conversion, bool negative) noexcept {
  if (negative) return "-";
  if (conversion.sign) return "+";
  return conversion.blank ? " " : "";
}

int64_t signed_value(const Conversion& conversion, int64_t value) noexcept {
  if (conversion.is_64bit) return value;
  return conversion.is_short ? static_cast<int16_t>(value) : static_cast<int32_t>(value);
}

uint64_t unsigned_value(const Conversion& conversion, int64_t value) noexcept {
  if (conversion.is_64bit) return static_cast<uint64_t>(value);
  return conversion.is_short ? static_cast<uint16_t>(value) : static_cast<uint32_t>(value);
}

std::string digits_of(uint64_t value, unsigned base, bool upper) {
  const char* const digits = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  std::string text;
  for (; value != 0; value /= base)
    text.insert(0, 1, digits[value % base]);
  return text;
}

void set_digits(Body& body, std::string&& digits, int precision) {
  const auto wanted = static_cast<size_t>(precision < 0 ? 1 : precision);
  body.zeros = wanted > digits.size() ? wanted - digits.size() : 0;
  body.store(std::move(digits));
}

void build_signed(Body& body, const Conversion& conversion, const FormatArg& arg) {
  const int64_t value = signed_value(conversion, arg.integer());
  const auto bits = static_cast<uint64_t>(value);
  set_digits(body, digits_of(value < 0 ? 0 - bits : bits, 10, false), conversion.precision);
  body.prefix = sign_text(conversion, value < 0);
}

void build_unsigned(Body& body, const Conversion& conversion, const FormatArg& arg) {
  const uint64_t value = unsigned_value(conversion, arg.integer());
  const bool hexadecimal = is_one_of(conversion.type, "xX");
  const unsigned base = hexadecimal ? 16 : conversion.type == 'o' ? 8 : 10;
  set_digits(body, digits_of(value, base, conversion.type == 'X'), conversion.precision);
  if (!conversion.alternate) return;
  if (hexadecimal && value != 0) body.prefix = conversion.type == 'X' ? "0X" : "0x";
  if (base == 8 && body.zeros == 0) body.zeros = 1;
}

void build_pointer(Body& body, const FormatArg& arg) {
  const void* const pointer = arg.kind() == Kind::string
                                  ? static_cast<const String*>(arg.pointer())->c_str()
                              : arg.kind() == Kind::count ? arg.count()
                                                          : arg.pointer();
  const auto address = reinterpret_cast<uintptr_t>(pointer);
  const auto value = arg.kind() == Kind::integer ? static_cast<uint32_t>(arg.integer())
                                                 : static_cast<uint32_t>(address);
  constexpr int kDigits = 8;
  set_digits(body, digits_of(value, 16, true), kDigits);
}

int real_precision(const Conversion& conversion) noexcept {
  return conversion.precision < 0 ? 6 : conversion.precision;
}

void build_real(Body& body, const Conversion& conversion, const FormatArg& arg) {
  body.store(real_text(conversion.type, real_precision(conversion), arg.real()));
  const bool negative = body.text.starts_with('-');
  if (negative) body.text.remove_prefix(1);
  body.prefix = sign_text(conversion, negative);
}

void build_time(Body& body, const Conversion& conversion, const FormatArg& arg,
                const char* picture) {
  const auto* const time = static_cast<const SystemTime*>(arg.pointer());
  if (time == nullptr) return;
  const Locale& locale = system_locale();
  std::optional<std::string> text =
      conversion.type == 'D' ? locale.date_text(*time, picture) : locale.time_text(*time, picture);
  if (text) body.store(std::move(*text));
}

void build_counted(Body& body, const FormatArg& arg) {
  const auto* const record = static_cast<const CountedText*>(arg.pointer());
  if (record == nullptr || record->length == 0) return;
  const char* const text = record->text != nullptr ? record->text : record->inline_text;
  if (text == nullptr || (record->text == nullptr && *text == '\0')) return;
  body.text = {text, record->length};
}

bool fits(const Conversion& conversion, Kind kind) noexcept {
  switch (conversion.type) {
    case 's':
    case 'S':
      if (prints_wide(conversion)) {
        return kind == Kind::wide_text || (kind == Kind::string && conversion.alternate);
      }
      return kind == Kind::text || kind == Kind::string;
    case 'p':
      return kind != Kind::none && kind != Kind::real;
    case 'D':
    case 'T':
      return kind == Kind::time;
    case 't':
      return kind == Kind::counted;
    default:
      return kind == (is_one_of(conversion.type, "cCdiuoxX") ? Kind::integer : Kind::real);
  }
}

void build_fitting(Body& body, const Conversion& conversion, const FormatArg& arg,
                   const char* picture) {
  switch (conversion.type) {
    case 's':
    case 'S':
      return build_text(body, conversion, arg);
    case 'c':
    case 'C':
      return build_character(body, conversion, arg);
    case 'd':
    case 'i':
      return build_signed(body, conversion, arg);
    case 'p':
      return build_pointer(body, arg);
    case 'D':
    case 'T':
      return build_time(body, conversion, arg, picture);
    case 't':
      return build_counted(body, arg);
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      return build_unsigned(body, conversion, arg);
    default:
      return build_real(body, conversion, arg);
  }
}

/// Takes what the conversion needs from arguments and format text. False if the argument doesn't
/// fit: then nothing is printed, not even padding.
bool build(Body& body, const Conversion& conversion, FormatArgs& args, FormatReader& reader) {
  const FormatArg arg = args.take();
  const bool has_picture = conversion.alternate && is_one_of(conversion.type, "DT");
  const std::string picture = has_picture ? reader.take_picture() : std::string();
  if (!fits(conversion, arg.kind())) return false;
  build_fitting(body, conversion, arg, has_picture ? picture.c_str() : nullptr);
  return true;
}

class Output {
 public:
  Output(char* out, size_t room) noexcept : out_(out), room_(room) {}

  void put(std::string_view text) noexcept {
    const size_t length = std::min(text.size(), room_ - length_);
    if (length != 0) std::memcpy(out_ + length_, text.data(), length);
    length_ += length;
  }
  void put(char character) noexcept { put(std::string_view(&character, 1)); }
  void fill(size_t count, char character) noexcept {
    const size_t length = std::min(count, room_ - length_);
    std::fill_n(out_ + length_, length, character);
    length_ += length;
  }
  size_t length() const noexcept { return length_; }

 private:
  char* const out_;
  const size_t room_;
  size_t length_ = 0;
};

void put_padded(Output& out, const Body& body, const Conversion& conversion) noexcept {
  const auto width = static_cast<size_t>(conversion.width);
  const size_t padding = width > body.length() ? width - body.length() : 0;
  const bool precise_integer = conversion.precision >= 0 && is_one_of(conversion.type, "diuoxX");
  const bool zeros = conversion.zero && !conversion.left && !precise_integer;
  if (!conversion.left && !zeros) out.fill(padding, ' ');
  out.put(body.prefix);
  if (zeros) out.fill(padding, '0');
  out.fill(body.zeros, '0');
  out.put(body.text);
  if (conversion.left) out.fill(padding, ' ');
}

void store_count(const Conversion& conversion, const FormatArg& arg, size_t length) noexcept {
  int* const count = arg.count();
  if (count == nullptr) return;
  const auto bits = static_cast<uint32_t>(length);
  constexpr uint32_t kLow = 0xFFFF;
  const bool low_only = conversion.is_short && !conversion.is_long;
  *count =
      static_cast<int>(low_only ? (static_cast<uint32_t>(*count) & ~kLow) | (bits & kLow) : bits);
}

void refuse(uint32_t error) {
  if (exception_mode()) throw ORLOException(error);
}

size_t measure_real(const Conversion& conversion, const FormatArg& arg) noexcept {
  // A small number leaves the figure of 128 alone whatever its digits are; a large one has up to
  // 309 before the point.
  const bool small = std::fabs(arg.real()) < 1e90;
  constexpr int kSignPointExponent = 10;
  const int digits = conversion.type != 'f' ? 1 : small ? 91 : 309;
  return static_cast<size_t>(std::max({128, conversion.width + std::max(conversion.precision, 0),
                                       digits + real_precision(conversion) + kSignPointExponent}));
}

size_t measure_integer(const Conversion& conversion) noexcept {
  const int precision = std::max(conversion.precision, 0);
  constexpr int kPrefix = 2;
  return static_cast<size_t>(
      std::max({conversion.is_64bit ? 64 : 32, conversion.width + precision, precision + kPrefix}));
}

size_t measure_text(const Conversion& conversion, FormatArgs& args, FormatReader& reader) {
  Body body;
  build(body, conversion, args, reader);
  // A time is measured with its terminator.
  const size_t length = body.length() + (is_one_of(conversion.type, "DT") ? 1 : 0);
  return std::max({length, size_t{1}, static_cast<size_t>(conversion.width)});
}

size_t measure_conversion(const Conversion& conversion, FormatArgs& args, FormatReader& reader) {
  const size_t prefix = conversion.alternate ? 2 : 0;
  switch (conversion.type) {
    case 's':
    case 'S':
    case 'D':
    case 'T':
    case 't':
      return prefix + measure_text(conversion, args, reader);
    case 'c':
    case 'C':
      args.take();
      return prefix + std::max(size_t{2}, static_cast<size_t>(conversion.width));
    case 'n':
      args.take();
      return prefix;
    case 'e':
    case 'f':
    case 'g':
    case 'G':
      return prefix + measure_real(conversion, args.take());
    case 'E':
      refuse(kErrorUnknownConversion);
      return 0;
    default:
      args.take();
      return prefix + measure_integer(conversion);
  }
}

}  // namespace

bool is_lead_byte(unsigned char /*byte*/) noexcept {
  return false;
}

size_t measure_format(const char* format, const FormatArg* args, size_t count,
                      LeadByteTest lead_byte) {
  FormatArgs left(args, count);
  FormatReader reader(format, left, FormatReader::Dialect::measure);
  size_t measured = 1;
  for (;;) {
    const Token token = reader.next();
    if (token == Token::end) return measured;
    if (token == Token::conversion) {
      measured += measure_conversion(reader.conversion(), left, reader);
      continue;
    }
    if (token == Token::stray) refuse(kErrorUnknownConversion);
    if (token == Token::literal) ++measured;
    if (lead_byte(static_cast<unsigned char>(reader.character()))) {
      refuse(kErrorLeadByteInFormat);
      reader.skip_byte();
    }
  }
}

size_t render_format(char* out, size_t room, const char* format, const FormatArg* args,
                     size_t count, LeadByteTest lead_byte) {
  FormatArgs left(args, count);
  FormatReader reader(format, left, FormatReader::Dialect::render);
  Output output(out, room);
  for (Token token = reader.next(); token != Token::end; token = reader.next()) {
    if (token != Token::conversion) {
      if (reader.character() != '\0') output.put(reader.character());
      if (lead_byte(static_cast<unsigned char>(reader.character()))) reader.skip_byte();
      continue;
    }
    const Conversion& conversion = reader.conversion();
    if (conversion.type == 'n') {
      store_count(conversion, left.take(), output.length());
      continue;
    }
    Body body;
    if (build(body, conversion, left, reader)) put_padded(output, body, conversion);
  }
  return output.length();
}

}  // namespace ORLO
