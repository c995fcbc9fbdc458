#include "export/yexcel/rk.h"

#include <bit>

namespace YExcel {
namespace {

// 2 to the 63rd: the first number that an integer of 64 bits can't hold.
constexpr double kBeyondIntegers = 9223372036854775808.0;
constexpr uint32_t kTimes100 = 1;
constexpr uint32_t kFlags = 3;

bool fits_integer(double value) noexcept {
  return value > -kBeyondIntegers && value < kBeyondIntegers;  // false for what is no number
}

/// The low 32 bits of the integer that is left without the fraction; 0 if there is none.
uint32_t truncated(double value) noexcept {
  return fits_integer(value) ? static_cast<uint32_t>(static_cast<int64_t>(value)) : 0;
}

}  // namespace

bool is_exact(double value) noexcept {
  return fits_integer(value * 10000) && truncated(value * 100) * 100 == truncated(value * 10000);
}

uint32_t rk_value(double value) noexcept {
  const bool is_whole = truncated(value) * 100 == truncated(value * 100);
  const auto bits = std::bit_cast<uint64_t>(is_whole ? value : value * 100);
  return (static_cast<uint32_t>(bits >> 32) & ~kFlags) | (is_whole ? 0 : kTimes100);
}

}  // namespace YExcel
