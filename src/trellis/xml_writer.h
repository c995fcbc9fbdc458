// From the program's own data straight to a file, element by element.
#pragma once

#include <memory>
#include <ostream>
#include <stack>
#include <vector>

#include "trellis/file_streams.h"
#include "trellis/xml_format.h"

namespace Trellis {

/// An element that is being written.
struct XMLWriterEntry {
  enum State : int { kOpened = 0, kAttributesWritten = 1, kStartTagClosed = 2, kFinished = 3 };

  explicit XMLWriterEntry(TL_String element_name) : name(std::move(element_name)) {}

  TL_String name;
  XMLAttributes attributes;
  TL_String content;  ///< written in front of the end tag, as it stands
  State state = kOpened;
  bool children = false;
};

/// Needs memory only for the open elements. Write errors show in the stream's state alone.
class XMLWriter {
 public:
  /// Takes the stream over, as a rule a tofstream.
  XMLWriter(std::unique_ptr<std::ostream> stream, const XMLFormat& format);
  /// The stream must outlive it.
  XMLWriter(std::ostream& stream, const XMLFormat& format);
  XMLWriter(const XMLWriter&) = delete;
  XMLWriter& operator=(const XMLWriter&) = delete;
  /// Ends the last line and closes a stream of its own. Elements that are open stay so.
  ~XMLWriter();

  /// Opens an element inside the open one, whose attributes are written now.
  void create(std::string_view name);
  /// An attribute of the open element, created empty if absent. Set after its first child it is
  /// lost; without an open element it goes nowhere, to one place for all writers.
  TL_String& operator[](std::string_view key);
  /// Closes the open element; false, and a failed assertion, without one.
  bool back();

 private:
  const std::unique_ptr<std::ostream> owned_stream;

 public:
  std::ostream& out;  ///< for the header, which the caller prints before the first element
  const XMLFormat _format;
  std::stack<XMLWriterEntry, std::vector<XMLWriterEntry>> stack;

 private:
  void add_line_start();
  void add_attributes(XMLWriterEntry& entry);
  void write_text();

  std::string text_;  ///< what is put together for the stream
};

}  // namespace Trellis
