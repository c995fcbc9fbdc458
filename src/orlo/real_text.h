// Floating-point numbers as text, as the target's C runtime prints them.
#pragma once

#include <string>

namespace ORLO {

/// What the runtime's sprintf makes of "%.*" plus `conversion`, one of e f g E G. Ties round away
/// from zero, exponents have three digits, infinity is 1.#INF. Chosen at link time.
std::string real_text(char conversion, int precision, double value);

/// The number that a text begins with, behind white space; 0 if there is none. One that is too
/// large is infinite. No locale matters.
double real_value(const char* text) noexcept;

}  // namespace ORLO
