// A document: read in blocks and by characters it gives the same, and what was read comes back when
// it is written and read again.
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "orlo/report.h"
#include "trellis/xml_test_support.h"

namespace {

using namespace Trellis;

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Foreign documents fail assertions; nobody is there to see them.
const bool kSilent = [] {
  ORLO::set_report_sink([](const String&, const String&) {});
  return true;
}();

/// Whether a name that was read is one that would be read again.
bool is_plain_name(const std::string& name) {
  for (const char c : name) {
    const auto byte = static_cast<uint8_t>(c);
    const bool letter = (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
    const bool other = (byte >= '0' && byte <= '9') || c == '.' || c == '-' || c == '_' || c == ':';
    if (!letter && !other && byte < 0xC0) return false;
  }
  return !name.empty();
}

/// Writes what has plain names; returns how that is shown once it has been read.
std::string write(XMLWriter& writer, const XMLNode& node) {
  std::string shown = '(' + std::string(node);
  writer.create(node);
  for (const auto& [name, value] : node.attributes) {
    if (!is_plain_name(name)) continue;
    writer[name] = value;
    shown += " @" + name + '=' + as_read_again(value);
  }
  for (const auto& child : node.children) {
    if (is_plain_name(*child)) shown += ' ' + write(writer, *child);
  }
  writer.back();
  return shown + ')';
}

void check_writing(const XMLNode& root) {
  std::ostringstream out;
  std::string shown;
  {
    XMLWriter writer(out, plain_format());
    writer._format.print_header(out, false);
    shown = write(writer, root);
  }
  const auto again = read_text(out.str());
  demand(again->good && again->doc.children.size() == 1);
  again->root().trailing.clear();
  demand(dump(again->root()) == shown);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto blocks = read_text(text);
  const auto characters = read_text_with<CharByCharReader>(text);
  demand(blocks->tree() == characters->tree());
  demand(blocks->errors == characters->errors);
  demand(blocks->good == blocks->errors.empty());
  demand(blocks->location.line == characters->location.line);
  demand(blocks->location.column == characters->location.column);
  demand(blocks->last_eol == characters->last_eol);
  demand(blocks->endl_defined == characters->endl_defined);
  for (const auto& child : blocks->doc.children) {
    if (is_plain_name(*child)) check_writing(*child);
  }
  return 0;
}
