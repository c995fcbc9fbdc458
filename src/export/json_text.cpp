#include "export/json_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/utf16.h"

namespace {

constexpr size_t kWord = sizeof(uint64_t);
constexpr uint64_t kEachByte = 0x0101010101010101;
constexpr uint64_t kHighBits = 0x80 * kEachByte;

/// High bits tell which bytes are 0; beyond the first of them they may be wrong.
constexpr uint64_t zero_bytes(uint64_t word) noexcept {
  return (word - kEachByte) & ~word & kHighBits;
}

/// Whether all 8 bytes stand in JSON as they are, and are ASCII.
constexpr bool all_plain(uint64_t word) noexcept {
  const uint64_t below_blank = (word - 0x20 * kEachByte) & ~word & kHighBits;
  return ((word & kHighBits) | below_blank | zero_bytes(word ^ ('"' * kEachByte)) |
          zero_bytes(word ^ ('\\' * kEachByte))) == 0;
}

/// What stands after the backslash of an ASCII character; 0 for one that needs none, 'u' for one
/// that is written by its number.
constexpr std::array<char, 128> make_escapes() noexcept {
  std::array<char, 128> escapes{};
  for (size_t i = 0; i < 0x20; ++i)
    escapes[i] = 'u';
  escapes['\b'] = 'b';
  escapes['\f'] = 'f';
  escapes['\n'] = 'n';
  escapes['\r'] = 'r';
  escapes['\t'] = 't';
  escapes['"'] = '"';
  escapes['\\'] = '\\';
  return escapes;
}

constexpr std::array<char, 128> kEscapes = make_escapes();

char* put_ascii(char* out, char character) noexcept {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(character);
  const char escape = kEscapes[code];
  if (escape == '\0') {
    *out++ = character;
    return out;
  }
  *out++ = '\\';
  *out++ = escape;
  if (escape != 'u') return out;
  for (const char digit : {'0', '0', kDigits[code >> 4], kDigits[code & 0xF]})
    *out++ = digit;
  return out;
}

bool is_ascii(char character) noexcept {
  return static_cast<unsigned char>(character) < 0x80;
}

/// Writes ASCII characters until one comes that isn't; `text` is what is left.
char* put_leading_ascii(char* out, std::string_view& text) noexcept {
  while (text.size() >= kWord) {
    uint64_t word = 0;
    std::memcpy(&word, text.data(), kWord);
    if (all_plain(word)) {
      std::memcpy(out, &word, kWord);
      out += kWord;
      text.remove_prefix(kWord);
      continue;
    }
    for (size_t i = 0; i < kWord; ++i) {
      if (!is_ascii(text.front())) return out;
      out = put_ascii(out, text.front());
      text.remove_prefix(1);
    }
  }
  while (!text.empty() && is_ascii(text.front())) {
    out = put_ascii(out, text.front());
    text.remove_prefix(1);
  }
  return out;
}

}  // namespace

char* put_json_utf8(char* out, std::string_view text) {
  while (!text.empty()) {
    out = put_leading_ascii(out, text);
    while (!text.empty() && !is_ascii(text.front())) {
      *out++ = text.front();
      text.remove_prefix(1);
    }
  }
  return out;
}

char* put_json_text(char* out, std::string_view text, const ORLO::Locale& locale) {
  out = put_leading_ascii(out, text);
  if (text.empty()) return out;
  // All the rest at once: in some code pages a later byte below 0x80 is half a character.
  const std::string utf8 = utf8_from_utf16(locale.widen(text.data(), text.size()));
  return put_json_utf8(out, utf8);
}
