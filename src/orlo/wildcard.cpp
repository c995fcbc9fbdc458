#include "orlo/wildcard.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "orlo/ascii.h"

namespace ORLO {
namespace {

// The runtime's case folding in its "C" locale is that of ASCII.
constexpr std::array<char, 256> make_folded_characters() {
  std::array<char, 256> table{};
  for (size_t code = 0; code < table.size(); ++code)
    table[code] = ascii_lower(static_cast<char>(code));
  return table;
}

constexpr std::array<char, 256> kFolded = make_folded_characters();

struct AsItIs {
  char operator()(char c) const noexcept { return c; }
};
struct Folded {
  char operator()(char c) const noexcept { return kFolded[static_cast<unsigned char>(c)]; }
};

void fold(String& text) {
  char* const first = text.writable();
  std::transform(first, first + text.length(), first, [](char c) { return ascii_lower(c); });
}

/// The first place from `text` on where the character `wanted` stands, or the end.
template <typename Read>
const char* next_place(const char* text, char wanted, Read read) noexcept {
  if (wanted == '?' || wanted == '*') return text;
  while (*text != '\0' && read(*text) != wanted)
    ++text;
  return text;
}

/// `read` is applied to the characters of the text.
template <typename Read>
bool match(const char* text, const char* pattern, Read read) noexcept {
  // Only the last * ever needs to take another character: what stands before it has matched with
  // as little text as possible. So the work is bounded by the product of the two lengths.
  const char* star = nullptr;
  const char* star_end = nullptr;
  while (*text != '\0') {
    if (*pattern == '*') {
      star = ++pattern;
      if (*star == '\0') return true;
      text = star_end = next_place(text, *star, read);
    } else if (*pattern == '?' || *pattern == read(*text)) {
      ++pattern;
      ++text;
    } else if (star != nullptr) {
      pattern = star;
      text = star_end = next_place(star_end + 1, *star, read);
    } else {
      return false;
    }
  }
  while (*pattern == '*')
    ++pattern;
  return *pattern == '\0';
}

}  // namespace

bool match_wildcard(const char* text, const char* pattern) noexcept {
  return match(text, pattern, AsItIs());
}

bool match_wildcard_nocase(String text, String pattern) {
  fold(text);
  fold(pattern);
  return match_wildcard(text.c_str(), pattern.c_str());
}

FoldedPattern::FoldedPattern(const String& pattern) : pattern_(pattern) {
  fold(pattern_);
  const char* const first = pattern_.c_str();
  const char* const last = first + std::strlen(first);
  shortest_ = static_cast<size_t>(last - first - std::count(first, last, '*'));
}

bool FoldedPattern::matches(const String& text) const noexcept {
  return text.length() >= shortest_ && match(text.c_str(), pattern_.c_str(), Folded());
}

}  // namespace ORLO
