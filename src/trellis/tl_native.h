// The library's own parser: tolerant, without look-ahead, and without an error that ends it.
#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>

#include "trellis/xml_reader.h"

namespace Trellis {

/// Bytes collected one behind the other, in a block that doubles.
class TagBuffer {
 public:
  TagBuffer();
  /// The bytes, until the next change.
  std::string_view view() const noexcept { return {bytes_.get(), length_}; }
  void clear() noexcept { length_ = 0; }
  void add(char c) { add(&c, 1); }
  void add(const char* bytes, size_t count);

 private:
  struct Free {
    void operator()(char* block) const noexcept { std::free(block); }
  };

  std::unique_ptr<char, Free> bytes_;
  size_t length_ = 0;
  size_t capacity_;
};

/// The characters of a reader, in blocks where nobody can have replaced its get.
class CharSource {
 public:
  static constexpr size_t kBlockSize = 16384;

  explicit CharSource(XMLReaderBase& reader);

  /// The next character, 0 to 255, or -1 at the end.
  int get();
  /// Adds all in front of the next `stop` and returns it; -1 if the end came first.
  int add_up_to(char stop, TagBuffer& buffer);
  /// Brings the reader's location up to what has been taken.
  void settle_location();

 private:
  bool fill();

  XMLReaderBase& reader_;
  XMLReader* const plain_;  ///< the reader if it is read in blocks, else null
  std::unique_ptr<char[]> block_;
  const char* at_ = nullptr;
  const char* end_ = nullptr;
  const char* counted_ = nullptr;  ///< the location counts what lies before it
};

class TagText;

/// Drives the handlers of a reader. Lives for one document.
class NativeParser {
 public:
  explicit NativeParser(XMLReaderBase& reader) : reader_(reader), source_(reader) {}
  void run();

 private:
  /// These return the character behind what they have parsed, or -1. The buffer holds the first
  /// one, or the whole tag.
  int start();
  int parse(int c);
  int parse_text();
  int parse_tag(int c);
  int parse_instruction();
  int parse_declaration(bool closed);
  int parse_cdata();
  int skip_line_end();

  void parse_element();
  void parse_xml_declaration(TagText& tag);
  void parse_stylesheet(TagText& tag);
  void parse_doctype();
  XMLAttributes parse_attributes(TagText& tag);
  bool parse_attribute(TagText& tag, XMLAttributes& attributes);

  /// The buffer's text in UTF-8, until the buffer's next change.
  std::string_view text();
  void add_error(const char* message);

  XMLReaderBase& reader_;
  CharSource source_;
  TagBuffer buffer_;
  TL_String converted_;
  bool in_comment_ = false;
  bool utf8_ = false;
};

}  // namespace Trellis
