#include "platform/utf16.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool is_high_surrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool is_low_surrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Reads one character from the front of `text`, which isn't empty, and takes it off.
char32_t take_utf8(std::string_view& text) {
  const auto byte_at = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte_at(0);
  const size_t length = lead < 0x80   ? 1
                        : lead < 0xC2 ? 0
                        : lead < 0xE0 ? 2
                        : lead < 0xF0 ? 3
                        : lead < 0xF5 ? 4
                                      : 0;
  char32_t code = length <= 1 ? lead : lead & (0x7Fu >> length);
  bool good = length > 0 && length <= text.size();
  for (size_t i = 1; good && i < length; ++i) {
    good = (byte_at(i) & 0xC0) == 0x80;
    code = (code << 6) | (byte_at(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  good = good && code >= kSmallest[length] && code <= 0x10FFFF && !is_high_surrogate(code) &&
         !is_low_surrogate(code);
  text.remove_prefix(good ? length : 1);
  return good ? code : kReplacement;
}

void append_utf8(std::string& out, char32_t code) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto put_tail = [&put, code](int shift) { put(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | (code >> 6));
    put_tail(0);
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put_tail(6);
    put_tail(0);
  } else {
    put(0xF0 | (code >> 18));
    put_tail(12);
    put_tail(6);
    put_tail(0);
  }
}

/// Units of [first, last] that lie `step` apart from `first` on are lower case; their upper case
/// lies `distance` below.
struct CaseRange {
  char16_t first;
  char16_t last;
  char16_t step;
  int16_t distance;
};

// Sorted by `last`; the ranges don't overlap.
constexpr CaseRange kLowerCase[] = {
    {u'a', u'z', 1, 32},       {0x00E0, 0x00F6, 1, 32}, {0x00F8, 0x00FE, 1, 32},
    {0x00FF, 0x00FF, 1, -121}, {0x0101, 0x012F, 2, 1},  {0x0133, 0x0137, 2, 1},
    {0x013A, 0x0148, 2, 1},    {0x014B, 0x0177, 2, 1},  {0x017A, 0x017E, 2, 1},
    {0x03AC, 0x03AC, 1, 38},   {0x03AD, 0x03AF, 1, 37}, {0x03B1, 0x03C1, 1, 32},
    {0x03C3, 0x03CB, 1, 32},   {0x03CC, 0x03CC, 1, 64}, {0x03CD, 0x03CE, 1, 63},
    {0x0430, 0x044F, 1, 32},   {0x0450, 0x045F, 1, 80}, {0x0461, 0x0481, 2, 1},
    {0x048B, 0x04BF, 2, 1},    {0x04C2, 0x04CE, 2, 1},  {0x04CF, 0x04CF, 1, 15},
    {0x04D1, 0x052F, 2, 1},    {0x0561, 0x0586, 1, 48}, {0x1E01, 0x1E95, 2, 1},
    {0x1EA1, 0x1EFF, 2, 1},    {0xFF41, 0xFF5A, 1, 32},
};

}  // namespace

std::u16string utf16_from_utf8(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const char32_t code = take_utf8(text);
    if (code < 0x10000) {
      result.push_back(static_cast<char16_t>(code));
    } else {
      result.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
      result.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
    }
  }
  return result;
}

std::string utf8_from_utf16(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    if (is_high_surrogate(code) && i + 1 < text.size() && is_low_surrogate(text[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (char32_t{text[++i]} - 0xDC00);
    } else if (is_high_surrogate(code) || is_low_surrogate(code)) {
      code = kReplacement;
    }
    append_utf8(result, code);
  }
  return result;
}

std::u16string utf16_from_bytes(std::string_view bytes) {
  std::u16string result(bytes.size() / 2, u'\0');
  for (size_t i = 0; i < result.size(); ++i) {
    const unsigned low = static_cast<unsigned char>(bytes[2 * i]);
    const unsigned high = static_cast<unsigned char>(bytes[2 * i + 1]);
    result[i] = static_cast<char16_t>(low | (high << 8));
  }
  return result;
}

std::string bytes_from_utf16(std::u16string_view text) {
  std::string result;
  result.reserve(2 * text.size());
  for (const char16_t unit : text) {
    result.push_back(static_cast<char>(unit & 0xFF));
    result.push_back(static_cast<char>(unit >> 8));
  }
  return result;
}

char16_t upcase(char16_t unit) noexcept {
  const auto* range =
      std::lower_bound(std::begin(kLowerCase), std::end(kLowerCase), unit,
                       [](const CaseRange& entry, char16_t wanted) { return entry.last < wanted; });
  if (range == std::end(kLowerCase) || unit < range->first) return unit;
  if ((unit - range->first) % range->step != 0) return unit;
  return static_cast<char16_t>(unit - range->distance);
}

std::u16string upcase(std::u16string_view text) {
  std::u16string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char16_t unit) { return upcase(unit); });
  return result;
}
