#include "orlo/wildcard.h"

#include <algorithm>

namespace ORLO {
namespace {

// The runtime's case folding in its "C" locale: no letter beyond ASCII has a case.
char folded(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void fold(String& text) {
  char* const first = text.writable();
  std::transform(first, first + text.length(), first, folded);
}

}  // namespace

bool match_wildcard(const char* text, const char* pattern) noexcept {
  // Only the last * ever needs to take another character: what stands before it has matched with
  // as little text as possible. So the work is bounded by the product of the two lengths.
  const char* star = nullptr;
  const char* star_end = nullptr;
  while (*text != '\0') {
    if (*pattern == '*') {
      star = ++pattern;
      star_end = text;
    } else if (*pattern == '?' || *pattern == *text) {
      ++pattern;
      ++text;
    } else if (star != nullptr) {
      pattern = star;
      text = ++star_end;
    } else {
      return false;
    }
  }
  while (*pattern == '*')
    ++pattern;
  return *pattern == '\0';
}

bool match_wildcard_nocase(String text, String pattern) {
  fold(text);
  fold(pattern);
  return match_wildcard(text.c_str(), pattern.c_str());
}

}  // namespace ORLO
