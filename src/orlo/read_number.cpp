#include "orlo/read_number.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <limits>

namespace ORLO {

void skip_white(InFile& file) {
  for (int next = file.peek(); next != -1 && std::isspace(next) != 0; next = file.peek())
    file.skip();
}

bool read_number(InFile& file, int32_t& result) {
  using Limits = std::numeric_limits<int32_t>;
  skip_white(file);
  char text[kIntTextRoom];
  const int base = file.read_int_text(text);
  // The same on machines whose long is longer.
  result = static_cast<int32_t>(
      std::clamp<long long>(std::strtoll(text, nullptr, base), Limits::min(), Limits::max()));
  return text[0] != '\0';
}

}  // namespace ORLO
