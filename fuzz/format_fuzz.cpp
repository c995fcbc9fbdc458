// A format text behind one byte that says with which argument the list begins: rendering stays in
// its room, and a smaller room only cuts the text.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "orlo/format.h"
#include "orlo/rstring.h"
#include "orlo/system_time.h"

namespace {

using ORLO::FormatArg;

void demand(bool holds) {
  if (!holds) std::abort();
}

// `out` has no byte to spare, so that the sanitizer sees an overrun by one.
size_t render(std::vector<char>& out, const std::string& format,
              const std::vector<FormatArg>& arguments) {
  const size_t length = ORLO::render_format(out.data(), out.size(), format.c_str(),
                                            arguments.data(), arguments.size());
  demand(length <= out.size());
  return length;
}

void check(const std::string& format, const std::vector<FormatArg>& arguments) {
  constexpr size_t kLargest = 1 << 18;
  const size_t measured = ORLO::measure_format(format.c_str(), arguments.data(), arguments.size());
  if (measured > kLargest) return;
  std::vector<char> whole(measured);
  const size_t length = render(whole, format, arguments);
  std::vector<char> half(length / 2);
  demand(render(half, format, arguments) == half.size());
  demand(std::equal(half.begin(), half.end(), whole.begin()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string format(reinterpret_cast<const char*>(data) + 1, size - 1);
  const String string("ab\0cd", 5, nullptr, 0);
  const ORLO::SystemTime time = {2009, 1, 1, 5, 13, 5, 7, 0};
  const ORLO::CountedText record = {"counted", 7, ""};
  int count = 0;
  std::vector<FormatArg> arguments = {
      FormatArg(-1),     FormatArg("text"),  FormatArg(string),
      FormatArg(1.5),    FormatArg(&time),   FormatArg(u"wide \x20ac"),
      FormatArg(12),     FormatArg(&record), FormatArg(-1e300),
      FormatArg(&count), FormatArg(-20),     FormatArg(std::numeric_limits<int64_t>::min()),
  };
  const auto first = static_cast<std::ptrdiff_t>(data[0] % arguments.size());
  std::rotate(arguments.begin(), arguments.begin() + first, arguments.end());
  check(format, arguments);
  return 0;
}
