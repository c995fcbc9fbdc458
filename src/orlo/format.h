// The format engine: a printf of our own with %#s (counted text), %D and %T (locale date and
// time, with an optional picture between two #) and %t (a counted record).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace ORLO {

class String;
struct SystemTime;

/// What %t prints: `length` bytes of `text`, or of `inline_text` when `text` is null.
struct CountedText {
  const char* text;
  uint32_t length;
  const char* inline_text;
};

/// One argument of a format call, tagged with its kind, so that a conversion that doesn't fit its
/// argument prints nothing instead of reading memory. Points at the caller's data and lives only
/// during the call.
class FormatArg {
 public:
  enum class Kind { none, integer, real, text, wide_text, string, time, counted, pointer, count };

  FormatArg() noexcept = default;
  template <typename T>
  requires(std::is_integral_v<T> || std::is_enum_v<T>) explicit FormatArg(T value) noexcept
      : kind_(Kind::integer), integer_(static_cast<int64_t>(value)) {}
  explicit FormatArg(double value) noexcept : kind_(Kind::real), real_(value) {}
  explicit FormatArg(const char* text) noexcept : kind_(Kind::text), pointer_(text) {}
  explicit FormatArg(const char16_t* text) noexcept : kind_(Kind::wide_text), pointer_(text) {}
  explicit FormatArg(const std::string& text) noexcept : FormatArg(text.c_str()) {}
  explicit FormatArg(const String& text) noexcept : kind_(Kind::string), pointer_(&text) {}
  explicit FormatArg(const SystemTime* time) noexcept : kind_(Kind::time), pointer_(time) {}
  explicit FormatArg(const CountedText* record) noexcept : kind_(Kind::counted), pointer_(record) {}
  explicit FormatArg(const void* pointer) noexcept : kind_(Kind::pointer), pointer_(pointer) {}
  /// For %n: receives the count of bytes printed so far (its low 16 bits with %hn).
  explicit FormatArg(int* count) noexcept : kind_(Kind::count), count_(count) {}

  Kind kind() const noexcept { return kind_; }
  int64_t integer() const noexcept { return kind_ == Kind::integer ? integer_ : 0; }
  double real() const noexcept { return kind_ == Kind::real ? real_ : 0.0; }
  const void* pointer() const noexcept { return pointer_; }
  int* count() const noexcept { return kind_ == Kind::count ? count_ : nullptr; }

 private:
  Kind kind_ = Kind::none;
  int64_t integer_ = 0;
  double real_ = 0.0;
  const void* pointer_ = nullptr;
  int* count_ = nullptr;
};

/// Tells the first byte of a two-byte character. In Windows-1252 there is none.
using LeadByteTest = bool (*)(unsigned char byte) noexcept;
bool is_lead_byte(unsigned char byte) noexcept;

/// Upper bound of the bytes that render_format writes for the same arguments, plus 1. Throws
/// ORLOException in exception mode: for a conversion unknown to it, which otherwise adds nothing,
/// and for a lead byte in literal text, whose trail byte is dropped otherwise.
size_t measure_format(const char* format, const FormatArg* args, size_t count,
                      LeadByteTest lead_byte = is_lead_byte);

/// Writes at most `room` bytes, no terminator; returns the number of bytes written.
size_t render_format(char* out, size_t room, const char* format, const FormatArg* args,
                     size_t count, LeadByteTest lead_byte = is_lead_byte);

}  // namespace ORLO
