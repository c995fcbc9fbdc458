#include "orlo/real_text.h"

#include <cstdio>

namespace ORLO {
namespace {

// The runtime's own function: the compiler's stdio replacement rounds and prints differently.
int print(char* out, size_t room, char conversion, int precision, double value) noexcept {
  switch (conversion) {
    case 'e':
      return _snprintf(out, room, "%.*e", precision, value);
    case 'f':
      return _snprintf(out, room, "%.*f", precision, value);
    case 'g':
      return _snprintf(out, room, "%.*g", precision, value);
    case 'E':
      return _snprintf(out, room, "%.*E", precision, value);
    default:
      return _snprintf(out, room, "%.*G", precision, value);
  }
}

}  // namespace

std::string real_text(char conversion, int precision, double value) {
  // Room for the largest number's 309 digits, sign, point and exponent.
  constexpr size_t kRoomBesidesPrecision = 330;
  std::string text(kRoomBesidesPrecision + static_cast<size_t>(precision), '\0');
  const int length = print(text.data(), text.size(), conversion, precision, value);
  text.resize(length < 0 ? 0 : static_cast<size_t>(length));
  return text;
}

}  // namespace ORLO
