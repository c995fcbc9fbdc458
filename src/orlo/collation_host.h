// The stand-in for the platform's linguistic order of 8-bit texts in Windows-1252.
#pragma once

namespace ORLO {

/// Approximates the platform with SORT_STRINGSORT: punctuation before digits before letters; then
/// accents, from left to right; then, unless case is ignored, small letters before capitals.
/// Ligatures sort as the letters that they are made of. Negative, 0, positive.
int stand_in_collate(const char* a, const char* b, bool ignore_case) noexcept;

}  // namespace ORLO
