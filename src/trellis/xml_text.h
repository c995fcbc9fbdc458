// Text between the 8-bit code page, UTF-8 and its form in XML.
#pragma once

#include <string_view>

#include "trellis/tl_string.h"

namespace Trellis {

bool is_ascii(std::string_view text) noexcept;

/// 8-bit text of the process's code page to UTF-8.
TL_String to_utf8(const char* text, size_t length);
/// UTF-8 to the code page. What isn't valid UTF-8, and what the code page lacks, becomes the code
/// page's stand-in, as a rule "?".
TL_String from_utf8(std::string_view text);

/// 8-bit text as it stands in a document, in UTF-8: a CDATA section of the text as it is, or the
/// text with the five entities, and control characters as numbers.
TL_String encode_xml_text(std::string_view text, bool cdata);
/// Appends the text in its form outside CDATA sections.
void append_encoded(std::string& out, std::string_view text);

/// What a piece of a document says, in the code page. Knows the five entities and CDATA sections;
/// a reference by number stays as it stands.
TL_String decode_xml_text(std::string_view text);

}  // namespace Trellis
