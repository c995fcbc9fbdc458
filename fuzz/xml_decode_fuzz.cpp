// Text on its way into a document and out of one: what is encoded comes back, but for control
// characters, which stay the numbers that they become.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "trellis/xml_test_support.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace Trellis;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const TL_String decoded = decode_xml_text(text);
  demand(decoded.size() <= text.size());
  const TL_String narrow = from_utf8(text);
  if (narrow.find_first_of("&<") == std::string::npos) demand(decoded == narrow);
  demand(from_utf8(to_utf8(text.data(), text.size())) == text);
  demand(decode_xml_text(encode_xml_text(text, false)) == as_read_again(text));
  const bool one_section = text.find("]]>") == std::string::npos && !text.ends_with(']');
  if (one_section) demand(decode_xml_text(encode_xml_text(text, true)) == text);
  return 0;
}
