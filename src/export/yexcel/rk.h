// The short form of numbers: 30 bits of an integer or of a double, and two that tell which.
#pragma once

#include <cstdint>

namespace YExcel {

/// Whether a double is written in the short form, by a rule that doesn't ask whether all its digits
/// have room there. False for what no integer can hold.
bool is_exact(double value) noexcept;

/// The two highest bits of an integer are lost.
constexpr uint32_t rk_value(int32_t value) noexcept {
  return static_cast<uint32_t>(value) * 4 + 2;
}
/// Of an exact double: itself, or a hundred times it where it has a fraction.
uint32_t rk_value(double value) noexcept;

}  // namespace YExcel
