// Text patterns: ? is any one character, * any run including the empty one, all else itself.
#pragma once

#include "orlo/rstring.h"

namespace ORLO {

/// Case-sensitive; both texts NUL-terminated.
bool match_wildcard(const char* text, const char* pattern) noexcept;

/// Folds private copies with the runtime's case folding first.
bool match_wildcard_nocase(String text, String pattern);

}  // namespace ORLO
