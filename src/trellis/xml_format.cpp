#include "trellis/xml_format.h"

#include "orlo/assertion.h"
#include "trellis/xml_chars.h"

namespace Trellis {
namespace {

struct OptionalPart {
  const char* name;
  TL_String XMLStyleSheet::*value;
};

constexpr OptionalPart kOptionalParts[] = {{"title", &XMLStyleSheet::title},
                                           {"media", &XMLStyleSheet::media},
                                           {"charset", &XMLStyleSheet::charset}};

/// It ends like an instruction, which readers have always been given and get along with.
void print_doctype(std::ostream& out, const XMLDocType& doctype, const char* line_end) {
  out << "<!DOCTYPE " << doctype.name;
  if (!doctype.public_id.empty()) {
    out << " PUBLIC \"" << doctype.public_id << '"' << line_end << " \"" << doctype.system_id
        << '"';
  } else if (!doctype.system_id.empty()) {
    out << " SYSTEM \"" << doctype.system_id << '"';
  }
  out << "?>" << line_end;
}

void print_stylesheet(std::ostream& out, const XMLStyleSheet& sheet, const char* line_end) {
  out << "<?xml-stylesheet href=\"" << sheet.href << "\" type=\"" << sheet.type << '"';
  for (const OptionalPart& part : kOptionalParts) {
    const TL_String& value = sheet.*part.value;
    if (!value.empty()) out << ' ' << part.name << "=\"" << value << '"';
  }
  if (sheet.alternate) out << " alternate=\"yes\"";
  out << "?>" << line_end;
}

}  // namespace

void XMLFormat::print_header(std::ostream& out, bool line_feed) const {
  const char* const line_end = line_feed ? endl : "";
  if (_utf8_bom) {
    out << "\xEF\xBB\xBF";
    ORLO::check_assertion(equals_nocase(_encoding, "utf-8"),
                          "!_stricmp(_encoding.c_str(), \"utf-8\")", "trellis", 800);
  }
  out << "<?xml version=\"" << version << "\" encoding=\"" << _encoding << '"';
  // Whatever is said, it says yes.
  if (standalone != -1) out << " standalone=\"yes\"";
  out << "?>" << line_end;
  if (!doctype.name.empty()) print_doctype(out, doctype, line_end);
  for (const XMLStyleSheet& sheet : stylesheets)
    print_stylesheet(out, sheet, line_end);
}

}  // namespace Trellis
