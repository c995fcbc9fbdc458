#include "trellis/xml_writer.h"

#include "orlo/assertion.h"
#include "trellis/xml_text.h"

namespace Trellis {
namespace {

/// Takes the attributes that are set without an element, for all writers.
TL_String& nowhere() {
  static TL_String text;
  return text;
}

}  // namespace

XMLWriter::XMLWriter(std::unique_ptr<std::ostream> stream, const XMLFormat& format)
    : owned_stream(std::move(stream)), out(*owned_stream), _format(format) {}

XMLWriter::XMLWriter(std::ostream& stream, const XMLFormat& format)
    : out(stream), _format(format) {}

XMLWriter::~XMLWriter() {
  try {
    out << _format.endl;
  } catch (...) {
    // A stream that throws when it fails has shown it; nothing may leave from here.
  }
}

void XMLWriter::create(std::string_view name) {
  if (!stack.empty()) {
    XMLWriterEntry& parent = stack.top();
    if (parent.state < XMLWriterEntry::kStartTagClosed) {
      add_attributes(parent);
      text_ += '>';
      parent.state = XMLWriterEntry::kStartTagClosed;
    }
    parent.children = true;
  }
  stack.emplace(TL_String(name));
  add_line_start();
  text_ += '<';
  append_encoded(text_, stack.top().name);  // `name` may lie in an entry, and those have moved
  write_text();
}

TL_String& XMLWriter::operator[](std::string_view key) {
  return stack.empty() ? nowhere() : attribute_of(stack.top().attributes, key);
}

bool XMLWriter::back() {
  if (!ORLO::check_assertion(!stack.empty(), "!_stack.empty()", "trellis", 1043)) return false;
  XMLWriterEntry& entry = stack.top();
  if (entry.state < XMLWriterEntry::kAttributesWritten) add_attributes(entry);
  if (!entry.children && entry.content.empty()) {
    text_ += "/>";
  } else {
    if (entry.state < XMLWriterEntry::kStartTagClosed) text_ += '>';
    text_ += entry.content;
    if (entry.content.empty()) add_line_start();
    text_ += "</";
    append_encoded(text_, entry.name);
    text_ += '>';
  }
  entry.state = XMLWriterEntry::kFinished;
  write_text();
  stack.pop();
  return true;
}

/// In front of a tag of the innermost element.
void XMLWriter::add_line_start() {
  if (_format.pretty > 0) text_ += _format.endl;
  if (_format.pretty == 2) text_.append(2 * (stack.size() - 1), ' ');
}

void XMLWriter::add_attributes(XMLWriterEntry& entry) {
  for (const auto& [name, value] : entry.attributes) {
    text_ += ' ';
    append_encoded(text_, name);
    text_ += "=\"";
    append_encoded(text_, value);
    text_ += '"';
  }
  entry.state = XMLWriterEntry::kAttributesWritten;
}

void XMLWriter::write_text() {
  out.write(text_.data(), static_cast<std::streamsize>(text_.size()));
  text_.clear();
}

}  // namespace Trellis
