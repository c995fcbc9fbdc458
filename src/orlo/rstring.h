// The text type of the program: 8-bit characters in the process's ANSI code page,
// reference-counted, copy-on-write, one pointer wide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "orlo/format.h"
#include "orlo/rstring_fwd.h"

namespace ORLO {

/// The pointer leads to the first character of a heap block: {length, capacity, refcount}, the
/// text (which may hold NULs), one NUL. Every empty String owns a block of its own. The count is
/// atomic, so copies may live on different threads; one String object belongs to one thread at a
/// time. Allocation failure goes to the new-handler as that of operator new does; without one it
/// throws std::bad_alloc.
class String {
 public:
  String();
  /// Copies NUL-terminated text; null gives the empty String.
  String(const char* text);  // NOLINT(google-explicit-constructor): text literals are Strings.
  /// Converts NUL-terminated 16-bit text to the code page. The result is cut to as many bytes as
  /// the input has units.
  explicit String(const char16_t* wide);
  String(const String& other) noexcept;
  /// Copies the bytes of [first, last); none, and a failed assertion, if last lies before first.
  String(const char* first, const char* last);
  /// One block holding the two counted pieces one behind the other.
  String(const char* a, size_t a_length, const char* b, size_t b_length);
  String(const std::string& text);  // NOLINT(google-explicit-constructor)
  ~String();

  String& operator=(const String& other) noexcept;
  String& operator=(const char* text);

  /// A String built like printf does; see orlo/format.h for the conversions.
  template <typename... Args>
  static String formatted(const char* format, const Args&... args) {
    String result;
    result.printf(format, args...);
    return result;
  }

  const char* c_str() const noexcept { return text_; }
  size_t length() const noexcept { return header().length; }
  bool empty() const noexcept { return length() == 0; }
  /// Size of the whole block in bytes, its header and terminator included.
  size_t capacity() const noexcept { return header().capacity; }
  bool shares_block_with(const String& other) const noexcept { return text_ == other.text_; }
  /// The text, writable for length() bytes; makes the block private first.
  char* writable();

  void assign(const String& other) noexcept;
  void assign(const char* text);
  /// Counted; the piece may lie inside the own block.
  void assign(const char* text, size_t length);
  void assign_wide(const char16_t* wide, size_t length);
  void append(const String& other);
  void append(const char* text);
  /// Counted; the piece may lie inside the own block.
  void append(const char* text, size_t length);
  void append(char character);

  /// Replaces the content; returns the number of bytes written.
  template <typename... Args>
  size_t printf(const char* format, const Args&... args) {
    const FormatArg list[] = {FormatArg(args)..., FormatArg()};
    return assign_formatted(format, list, sizeof...(args));
  }
  /// Appends; returns the number of bytes written.
  template <typename... Args>
  size_t appendf(const char* format, const Args&... args) {
    const FormatArg list[] = {FormatArg(args)..., FormatArg()};
    return append_formatted(format, list, sizeof...(args));
  }

  /// Bytes gained are zero when the block was shared and unspecified otherwise.
  void resize(size_t length);
  void make_unique();
  /// Gives back unused capacity.
  void compact();
  /// Replaces each hit from left to right; true if the text has changed.
  bool replace(const char* what, const char* by);

  void swap(String& other) noexcept;

 private:
  struct Header {
    uint32_t length;
    uint32_t capacity;
    int32_t refcount;
  };

  const Header& header() const noexcept { return reinterpret_cast<const Header*>(text_)[-1]; }
  Header& header() noexcept { return reinterpret_cast<Header*>(text_)[-1]; }
  /// A block that fits, with the bytes of the text unset.
  static char* allocate(size_t length);
  void release() noexcept;
  bool shared() const noexcept;
  /// Whether `text` points into the own block.
  bool holds(const char* text) const noexcept;
  /// Gives the private block its new length, reallocating it if it is too small.
  void adjust(size_t length);
  void reallocate(size_t capacity);
  size_t assign_formatted(const char* format, const FormatArg* args, size_t count);
  size_t append_formatted(const char* format, const FormatArg* args, size_t count);

  char* text_;
};

}  // namespace ORLO
