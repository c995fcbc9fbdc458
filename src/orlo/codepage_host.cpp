#include "orlo/codepage_host.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace ORLO {
namespace {

// The bytes 0x80 to 0x9F; the five unused ones keep their number.
constexpr char16_t kHighControls[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// From U+0100 on. The letters that the code page has are found before this is asked.
constexpr char kLatinExtendedA[] =
    "AaAaAaCcCcCcCcDd\xd0"
    "dEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi"
    "??JjKk?LlLlLl??LlNnNnNn???OoOoOo??RrRrRrSsSsSs??TtTtTtUuUuUuUuUuUuWwYy?ZzZz??";

struct Similar {
  char16_t unit;
  char byte;
};

constexpr Similar kSimilar[] = {
    {0x2000, ' '},  {0x2001, ' '}, {0x2002, ' '}, {0x2003, ' '}, {0x2010, '-'}, {0x2011, '-'},
    {0x2032, '\''}, {0x2035, '`'}, {0x2044, '/'}, {0x2212, '-'}, {0x2215, '/'}, {0x2217, '*'},
    {0x2223, '|'},  {0x2236, ':'}, {0x223C, '~'}, {0x3000, ' '},
};

char narrow_unit(char16_t unit) noexcept {
  if (unit < 0x80 || (unit >= 0xA0 && unit < 0x100)) return static_cast<char>(unit);
  const auto* const high = std::find(std::begin(kHighControls), std::end(kHighControls), unit);
  if (high != std::end(kHighControls)) {
    return static_cast<char>(0x80 + (high - std::begin(kHighControls)));
  }
  if (unit >= 0x100 && unit < 0x100 + sizeof kLatinExtendedA - 1) {
    return kLatinExtendedA[unit - 0x100];
  }
  constexpr char16_t kFullWidthBegin = 0xFF01;
  constexpr char16_t kFullWidthEnd = 0xFF5F;
  if (unit >= kFullWidthBegin && unit < kFullWidthEnd) {
    return static_cast<char>(unit - kFullWidthBegin + '!');
  }
  const auto* const similar = std::find_if(std::begin(kSimilar), std::end(kSimilar),
                                           [unit](const Similar& s) { return s.unit == unit; });
  return similar != std::end(kSimilar) ? similar->byte : '?';
}

char16_t widen_byte(char c) noexcept {
  const auto byte = static_cast<uint8_t>(c);
  return byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80] : byte;
}

}  // namespace

std::string stand_in_narrow(const char16_t* wide, size_t length) {
  std::string text(length, '\0');
  std::transform(wide, wide + length, text.begin(), narrow_unit);
  return text;
}

std::u16string stand_in_widen(const char* text, size_t length) {
  std::u16string wide(length, u'\0');
  std::transform(text, text + length, wide.begin(), widen_byte);
  return wide;
}

}  // namespace ORLO
