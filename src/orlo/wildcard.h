// Text patterns: ? is any one character, * any run including the empty one, all else itself.
#pragma once

#include "orlo/rstring.h"

namespace ORLO {

/// Case-sensitive; both texts NUL-terminated.
bool match_wildcard(const char* text, const char* pattern) noexcept;

/// Folds private copies with the runtime's case folding first.
bool match_wildcard_nocase(String text, String pattern);

/// A pattern for many texts: matches what match_wildcard_nocase does, folds the pattern once and
/// copies no text.
class FoldedPattern {
 public:
  explicit FoldedPattern(const String& pattern);
  bool matches(const String& text) const noexcept;

 private:
  String pattern_;
  size_t shortest_;  ///< no text with fewer characters can match
};

}  // namespace ORLO
