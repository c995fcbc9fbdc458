#include "trellis/tl_native.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <typeinfo>

#include "orlo/assertion.h"
#include "orlo/exception.h"
#include "trellis/xml_chars.h"
#include "trellis/xml_text.h"

namespace Trellis {
namespace {

constexpr size_t kFirstCapacity = 2048;
/// Admits the two-byte characters U+00C0 to U+00FF, and the byte behind it whatever it is.
constexpr char kLatinLead = '\xC3';

bool is_name_byte(char c) noexcept {
  return (ORLO::ascii_lower(c) >= 'a' && ORLO::ascii_lower(c) <= 'z') || is_digit(c) || c == '.' ||
         c == '-' || c == '_' || c == ':';
}

const char* text_or_null(const TL_String& text) noexcept {
  return text.empty() ? nullptr : text.c_str();
}

int standalone_of(const XMLAttributes& attributes) {
  const auto found = attributes.find("standalone");
  if (found == attributes.end()) return -1;
  return equals_nocase(found->second, "yes") ? 1 : 0;
}

TL_String value_of(const XMLAttributes& attributes, std::string_view name) {
  const auto found = attributes.find(name);
  return found != attributes.end() ? found->second : TL_String();
}

/// Only where the class is the library's own is its get known not to be replaced.
XMLReader* plain_reader(XMLReaderBase& reader) {
  return typeid(reader) == typeid(XMLReader) ? static_cast<XMLReader*>(&reader) : nullptr;
}

}  // namespace

TagBuffer::TagBuffer()
    : bytes_(static_cast<char*>(std::malloc(kFirstCapacity))), capacity_(kFirstCapacity) {
  if (bytes_ == nullptr) ORLO::throw_out_of_memory();
}

void TagBuffer::add(const char* bytes, size_t count) {
  if (capacity_ - length_ < count) {
    size_t capacity = capacity_;
    while (capacity - length_ < count)
      capacity *= 2;
    auto* const grown = static_cast<char*>(std::realloc(bytes_.get(), capacity));
    if (grown == nullptr) ORLO::throw_out_of_memory();
    static_cast<void>(bytes_.release());
    bytes_.reset(grown);
    capacity_ = capacity;
  }
  std::memcpy(bytes_.get() + length_, bytes, count);
  length_ += count;
}

CharSource::CharSource(XMLReaderBase& reader) : reader_(reader), plain_(plain_reader(reader)) {
  if (plain_ != nullptr) block_ = std::make_unique_for_overwrite<char[]>(kBlockSize);
}

int CharSource::get() {
  if (plain_ == nullptr) return reader_.get();
  if (at_ == end_ && !fill()) return -1;
  return static_cast<uint8_t>(*at_++);
}

int CharSource::add_up_to(char stop, TagBuffer& buffer) {
  if (plain_ == nullptr) {
    int c = reader_.get();
    for (; c != -1 && static_cast<char>(c) != stop; c = reader_.get())
      buffer.add(static_cast<char>(c));
    return c;
  }
  while (at_ != end_ || fill()) {
    const auto left = static_cast<size_t>(end_ - at_);
    const auto* const found = static_cast<const char*>(std::memchr(at_, stop, left));
    buffer.add(at_, found != nullptr ? static_cast<size_t>(found - at_) : left);
    at_ = found != nullptr ? found + 1 : end_;
    if (found != nullptr) return static_cast<uint8_t>(stop);
  }
  return -1;
}

void CharSource::settle_location() {
  if (plain_ != nullptr && counted_ != at_) plain_->count(counted_, at_);
  counted_ = at_;
}

bool CharSource::fill() {
  settle_location();
  // Only what the stream has at hand: what comes in front of its failure is then parsed.
  std::istream& in = *plain_->in;
  const int first = in.get();
  if (first == std::istream::traits_type::eof()) return false;
  block_[0] = static_cast<char>(first);
  const std::streamsize more = in.readsome(block_.get() + 1, kBlockSize - 1);
  at_ = counted_ = block_.get();
  end_ = at_ + 1 + more;
  return true;
}

/// A tag, walked from left to right. Behind its last character it seems to hold NULs.
class TagText {
 public:
  TagText(std::string_view text, size_t at) : text_(text), at_(std::min(at, text.size())) {}

  char peek() const noexcept { return at_ < text_.size() ? text_[at_] : '\0'; }

  bool skip(char c) noexcept {
    if (at_ == text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  void skip_space() noexcept {
    while (is_space(peek()))
      ++at_;
  }

  std::string_view take_name() noexcept {
    const size_t begin = at_;
    for (; at_ < text_.size() && (is_name_byte(text_[at_]) || text_[at_] == kLatinLead); ++at_) {
      if (text_[at_] == kLatinLead && at_ + 1 < text_.size()) ++at_;
    }
    return text_.substr(begin, at_ - begin);
  }

  /// What lies in front of the next `quote`, which is skipped; false, and all that is left, without
  /// one.
  bool take_to(char quote, std::string_view& value) noexcept {
    const size_t end = text_.find(quote, at_);
    const bool closed = end != std::string_view::npos;
    value = text_.substr(at_, closed ? end - at_ : end);
    at_ = closed ? end + 1 : text_.size();
    return closed;
  }

  /// The next string in quotes; empty if none follows.
  TL_String take_quoted() {
    skip_space();
    const char quote = peek();
    std::string_view value;
    if ((quote != '"' && quote != '\'') || !skip(quote) || !take_to(quote, value)) return {};
    return TL_String(value);
  }

 private:
  const std::string_view text_;
  size_t at_;
};

void NativeParser::run() {
  for (int c = start(); c != -1;)
    c = parse(c);
  source_.settle_location();
}

int NativeParser::start() {
  constexpr int kByteOrderMark[] = {0xEF, 0xBB, 0xBF};
  for (const int expected : kByteOrderMark) {
    const int c = source_.get();
    if (c != expected) return c;
  }
  utf8_ = true;
  reader_._format._utf8_bom = true;
  return source_.get();
}

int NativeParser::parse(int c) {
  buffer_.clear();
  buffer_.add(static_cast<char>(c));
  return in_comment_ || c == '<' ? parse_tag(c) : parse_text();
}

int NativeParser::parse_text() {
  const int next = source_.add_up_to('<', buffer_);
  if (!reader_.endl_defined) {
    const size_t line_end = buffer_.view().find_first_of("\r\n");
    if (line_end != std::string_view::npos) {
      reader_._format.endl = buffer_.view()[line_end] == '\n' ? "\n" : "\r\n";
      reader_.endl_defined = true;
    }
  }
  reader_.on_default(TL_String(text()));
  return next;
}

int NativeParser::parse_tag(int c) {
  const bool closed = c == '>' || source_.add_up_to('>', buffer_) == '>';
  if (closed && c != '>') buffer_.add('>');
  const std::string_view tag = text();
  if (in_comment_ || tag.starts_with("<!--")) {
    in_comment_ = !tag.ends_with("-->");
    reader_.on_default(TL_String(tag));
    return source_.get();
  }
  switch (TagText(tag, 1).peek()) {
    case '?':
      return parse_instruction();
    case '!':
      return parse_declaration(closed);
    case '/':
      reader_.on_end_element();
      return source_.get();
    default:
      parse_element();
      return source_.get();
  }
}

int NativeParser::parse_instruction() {
  TagText tag(text(), 2);
  const std::string_view name = tag.take_name();
  if (name == "xml") {
    parse_xml_declaration(tag);
    return skip_line_end();
  }
  if (name == "xml-stylesheet") {
    parse_stylesheet(tag);
    return skip_line_end();
  }
  reader_.on_default(TL_String(text()));
  return source_.get();
}

int NativeParser::parse_declaration(bool closed) {
  if (text().starts_with("<!DOCTYPE ")) {
    parse_doctype();
    return skip_line_end();
  }
  if (text().starts_with("<![CDATA[")) return parse_cdata();
  return closed ? '>' : -1;
}

int NativeParser::parse_cdata() {
  while (!buffer_.view().ends_with("]]>") && source_.add_up_to('>', buffer_) != -1)
    buffer_.add('>');
  reader_.on_default(TL_String(text()));
  return source_.get();
}

int NativeParser::skip_line_end() {
  int c = source_.get();
  if (c == '\r') c = source_.get();
  if (c == '\n') c = source_.get();
  return c;
}

void NativeParser::parse_element() {
  const std::string_view whole = text();
  TagText tag(whole, 1);
  const std::string_view name = tag.take_name();
  if (name.empty()) return;
  XMLAttributes attributes = parse_attributes(tag);
  reader_.on_start_element(from_utf8(name), std::move(attributes));
  if (whole.ends_with("/>")) reader_.on_end_element();
}

void NativeParser::parse_xml_declaration(TagText& tag) {
  const XMLAttributes attributes = parse_attributes(tag);
  const TL_String version = value_of(attributes, "version");
  const TL_String encoding = value_of(attributes, "encoding");
  reader_.on_xml_decl(text_or_null(version), text_or_null(encoding), standalone_of(attributes));
  if (encoding.empty()) return;
  if (equals_nocase(encoding, "utf-8")) {
    utf8_ = true;
  } else if (ORLO::check_assertion(!reader_._format._utf8_bom, "!_reader._format._utf8_bom",
                                   "tl-native", 336)) {
    // With the mark the bytes are UTF-8, whatever the declaration says.
    utf8_ = false;
  }
}

void NativeParser::parse_stylesheet(TagText& tag) {
  const XMLAttributes attributes = parse_attributes(tag);
  reader_._format.stylesheets.push_back(
      {value_of(attributes, "href"), value_of(attributes, "type"), value_of(attributes, "title"),
       value_of(attributes, "media"), value_of(attributes, "charset"),
       value_of(attributes, "alternate") == "yes"});
}

void NativeParser::parse_doctype() {
  constexpr std::string_view kBegin = "<!DOCTYPE ";
  TagText tag(text(), kBegin.size());
  XMLDocType& doctype = reader_._format.doctype;
  tag.skip_space();
  doctype.name = from_utf8(tag.take_name());
  tag.skip_space();
  tag.take_name();  // PUBLIC or SYSTEM; what follows is taken alike
  doctype.public_id = tag.take_quoted();
  doctype.system_id = tag.take_quoted();
}

XMLAttributes NativeParser::parse_attributes(TagText& tag) {
  XMLAttributes attributes;
  while (tag.peek() != '\0' && tag.peek() != '>' && tag.peek() != '/') {
    tag.skip_space();
    if (tag.peek() == '?' || tag.peek() == '/') break;
    if (!parse_attribute(tag, attributes)) break;
  }
  return attributes;
}

/// False if the list ends here.
bool NativeParser::parse_attribute(TagText& tag, XMLAttributes& attributes) {
  const std::string_view name = tag.take_name();
  if (!tag.skip('=')) {
    add_error("missing attribute assignment");
    return false;
  }
  const char quote = tag.peek();
  if (quote != '"' && quote != '\'') {
    add_error("missing attribute value quote");
    return false;
  }
  tag.skip(quote);
  std::string_view value;
  const bool closed = tag.take_to(quote, value);
  TL_String& stored =
      is_ascii(name) ? attribute_of(attributes, name) : attribute_of(attributes, from_utf8(name));
  stored = decode_xml_text(value);
  if (!closed) add_error("unterminated attribute quote");
  return closed;
}

std::string_view NativeParser::text() {
  if (utf8_ || is_ascii(buffer_.view())) return buffer_.view();
  converted_ = to_utf8(buffer_.view().data(), buffer_.view().size());
  return converted_;
}

void NativeParser::add_error(const char* message) {
  source_.settle_location();
  const XMLLocation& place = reader_.location;
  reader_.errors.push_back({message, place.display_path, place.line, place.column, 0});
}

}  // namespace Trellis
