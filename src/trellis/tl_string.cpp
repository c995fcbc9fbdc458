#include "trellis/tl_string.h"

#include <iterator>
#include <tuple>

#include "orlo/rstring.h"

namespace Trellis {

TL_String::TL_String(const String& text) : std::string(text.c_str(), text.length()) {}

const TL_String kValueName("value");
const TL_String kPropertyName("property");

TL_String& attribute_of(XMLAttributes& attributes, std::string_view name) {
  auto place = attributes.end();
  if (!attributes.empty() && !(std::prev(place)->first < name)) {
    place = attributes.lower_bound(name);
    if (place->first == name) return place->second;
  }
  return attributes
      .emplace_hint(place, std::piecewise_construct, std::forward_as_tuple(name),
                    std::forward_as_tuple())
      ->second;
}

}  // namespace Trellis
