// Reading a file: bytes, and text of 8 or 16 bits to a character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "orlo/file_modes.h"
#include "orlo/rstring.h"

namespace ORLO {

/// Room for the longest number text and its NUL.
inline constexpr size_t kIntTextRoom = 15 + 1;
inline constexpr size_t kFloatTextRoom = 28 + 1;

/// A character is an 8-bit one in the code page, whatever the file's encoding. A character that
/// lacks its second byte isn't one: the file ends before it. Objects belong to one thread.
class InFile {
 public:
  InFile() = default;
  InFile(const InFile&) = delete;
  InFile& operator=(const InFile&) = delete;

  /// The characters from here to white space or the end; none if white space is next. Returns
  /// their count.
  virtual size_t read_word(String& word) = 0;
  /// Likewise, at most capacity - 1 of them and a NUL; the rest of the word stays unread.
  virtual size_t read_word(char* buffer, size_t capacity) = 0;
  /// The text of an integer. Returns its base: 8, 10 or 16, or 0 if there is no number or a lone 0,
  /// which leaves it open. If no digit follows, nothing is read and the text is empty.
  virtual int read_int_text(char (&buffer)[kIntTextRoom]) = 0;
  /// The text of a real number. Returns its length, 0 if there is none.
  virtual size_t read_float_text(char (&buffer)[kFloatTextRoom]) = 0;
  virtual ~InFile() = default;
  /// The next character, 0 to 255, without moving; -1 at the end. Never throws.
  virtual int peek() = 0;
  virtual void skip() = 0;
  /// Copies up to `max` characters, stops before `stop_char` or the end, and puts a NUL behind:
  /// `buffer` needs room for max + 1. Returns the count.
  virtual size_t read_until(char* buffer, size_t max, char stop_char) = 0;
  /// The next character; -1 at the end. Never throws.
  virtual int get() = 0;
  /// The end has been seen, or the file isn't open, or reading it has failed.
  virtual bool eof() const = 0;
  /// The file isn't open.
  virtual bool failed() const = 0;
  virtual bool good() const = 0;
  /// Offset of the next character, in bytes from the file's beginning.
  virtual uint64_t tell() const = 0;
  /// Also forgets an end or a failure that was met.
  virtual void seek(uint64_t offset) = 0;
  /// The character `distance` characters from the next one, without moving; -1 outside the file.
  virtual int peek_at(ptrdiff_t distance) = 0;
  /// Returns how many characters were read. In exception mode a read that ends too soon throws
  /// instead: what the system says, or the ORLOException for a read beyond the end.
  virtual size_t read(void* buffer, size_t count) = 0;

  /// What is at hand of the file's bytes from the next one on, perhaps nothing; valid until the
  /// next other call. With advance() the way past the virtual calls for readers of many bytes.
  std::string_view window() const noexcept {
    return {position_, static_cast<size_t>(fill_end_ - position_)};
  }
  /// Moves on by so many bytes of the window.
  void advance(size_t bytes) noexcept { position_ += bytes; }

  int encoding = kText8Bit;

 protected:
  /// Null before the first block has come.
  const char* position_ = nullptr;
  const char* fill_end_ = nullptr;
};

}  // namespace ORLO
