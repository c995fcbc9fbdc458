// Text and pattern, parted by the first line feed: short ones are matched by the rules as well.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "orlo/wildcard.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

bool matches_by_recursion(const char* text, const char* pattern) {
  if (*pattern == '*') {
    return matches_by_recursion(text, pattern + 1) ||
           (*text != '\0' && matches_by_recursion(text + 1, pattern));
  }
  if (*text == '\0' || *pattern == '\0') return *text == *pattern;
  return (*pattern == '?' || *pattern == *text) && matches_by_recursion(text + 1, pattern + 1);
}

std::string lower(std::string text) {
  const auto folded = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  };
  std::transform(text.begin(), text.end(), text.begin(), folded);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kShort = 24;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const size_t parting = bytes.find('\n');
  const auto up_to_nul = [](const std::string& piece) { return piece.substr(0, piece.find('\0')); };
  const std::string text = up_to_nul(bytes.substr(0, parting));
  const std::string pattern =
      parting == std::string::npos ? "" : up_to_nul(bytes.substr(parting + 1));
  const bool matches = ORLO::match_wildcard(text.c_str(), pattern.c_str());
  if (bytes.size() <= kShort) {
    demand(matches == matches_by_recursion(text.c_str(), pattern.c_str()));
  }
  demand(ORLO::match_wildcard_nocase(text, pattern) ==
         ORLO::match_wildcard(lower(text).c_str(), lower(pattern).c_str()));
  demand(ORLO::match_wildcard(text.c_str(), (pattern + "*").c_str()) || !matches);
  return 0;
}
