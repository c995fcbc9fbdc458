#include "trellis/xml_reader.h"

#include <algorithm>
#include <cstring>

#include "trellis/tl_native.h"
#include "trellis/xml_chars.h"

namespace Trellis {
namespace {

constexpr std::string_view kCdataBegin = "<![CDATA[";
constexpr std::string_view kCdataEnd = "]]>";

bool is_one_cdata(std::string_view text) noexcept {
  return text.size() >= kCdataBegin.size() + kCdataEnd.size() && text.starts_with(kCdataBegin) &&
         text.ends_with(kCdataEnd);
}

const char* find_or_end(const char* begin, const char* end, char c) noexcept {
  const void* const found = std::memchr(begin, c, static_cast<size_t>(end - begin));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

}  // namespace

void XMLReaderBase::read() {
  NativeParser(*this).run();
  XMLNode& node = *pos.current;
  (node.children.empty() ? node : *node.children.back()).trailing += content;
  content.clear();
}

void XMLReaderBase::on_xml_decl(const char* version, const char* encoding, int standalone) {
  if (version != nullptr) _format.version = version;
  if (encoding != nullptr) _format._encoding = encoding;
  _format.standalone = standalone;
}

void XMLReaderBase::on_start_element(const TL_String& name, XMLAttributes attributes) {
  XMLNode& parent = *pos.current;
  const std::string_view body = without_tail(content);
  std::string_view tail = std::string_view(content).substr(body.size());
  if (!body.empty()) {
    if (!parent.children.empty()) {
      parent.children.back()->trailing += body;
    } else if (last_tag == kStartTag) {
      parent.content += body;
    } else if (last_tag == kEndTag) {
      parent.trailing += body;
    } else {
      tail = content;
    }
  }
  parent.children.push_back(std::make_unique<XMLNode>(name, TL_String(tail)));
  XMLNode& node = *parent.children.back();
  node.attributes = std::move(attributes);
  pos.add_down(node);
  last_tag = kStartTag;
  content.clear();
}

void XMLReaderBase::on_end_element() {
  XMLNode& node = *pos.current;
  std::string_view body = content;
  std::string_view tail;
  node.cdata_content = is_one_cdata(body);
  if (node.cdata_content) {
    body.remove_prefix(kCdataBegin.size());
    body.remove_suffix(kCdataEnd.size());
  } else {
    body = without_tail(content);
    tail = std::string_view(content).substr(body.size());
  }
  if (!body.empty()) {
    const bool own = node.children.empty() || last_tag == kStartTag;
    (own ? node.content : node.children.back()->trailing) += body;
  }
  if (!tail.empty()) node.end = tail;
  pos.back();
  last_tag = kEndTag;
  content.clear();
}

void XMLReaderBase::on_default(const TL_String& text) {
  content += text;
}

int XMLReader::get() {
  const int c = in->get();
  if (c == std::istream::traits_type::eof()) return -1;
  count(c);
  return c;
}

void XMLReader::count(int c) {
  if (c != '\n' && c != '\r') {
    ++location.column;
    last_eol = 0;
  } else if (last_eol != 0 && c != last_eol) {
    last_eol = 0;  // the second half of a pair
  } else {
    location.column = 1;
    ++location.line;
    last_eol = c;
  }
}

void XMLReader::count(const char* begin, const char* end) {
  const char* feed = find_or_end(begin, end, '\n');
  const char* carriage_return = find_or_end(begin, end, '\r');
  while (begin != end) {
    const char* const stop = std::min(feed, carriage_return);
    if (stop != begin) {
      location.column += static_cast<int>(stop - begin);
      last_eol = 0;
      begin = stop;
      continue;
    }
    count(*begin++);
    if (feed < begin) feed = find_or_end(begin, end, '\n');
    if (carriage_return < begin) carriage_return = find_or_end(begin, end, '\r');
  }
}

bool XMLDoc::read(XMLReaderBase& reader, const char* display_path) {
  reader.location = {display_path != nullptr ? display_path : "", 1, 1};
  reader.errors.clear();
  reader.warnings.clear();
  reader.read();
  _format = reader._format;
  if (!reader.endl_defined) _format.endl = "\n";
  if (reader.errors.empty()) return true;
  errors = reader.errors;
  return false;
}

}  // namespace Trellis
