// The text type of the XML library.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "orlo/rstring_fwd.h"

namespace Trellis {

/// A standard string that also takes a String; both ways copy the counted text, NULs included.
/// String takes it as it takes any standard string.
class TL_String : public std::string {
 public:
  using std::string::string;
  using std::string::operator=;
  TL_String() = default;
  TL_String(const std::string& text) : std::string(text) {}
  TL_String(std::string&& text) noexcept : std::string(std::move(text)) {}
  TL_String(const String& text);
};

/// Ordered by unsigned bytes; a prefix sorts first.
using XMLAttributes = std::map<TL_String, TL_String, std::less<>>;

/// The value of that name, created empty if absent. Quick for names that come in their order.
TL_String& attribute_of(XMLAttributes& attributes, std::string_view name);

extern const TL_String kValueName;     ///< "value"
extern const TL_String kPropertyName;  ///< "property"

}  // namespace Trellis
