// What both kinds of files have in common in reading: one window of bytes, and the text in it.
#pragma once

#include "orlo/in_file.h"

namespace ORLO {

inline constexpr size_t kFileBufferSize = 4096;

class BufferedInFile : public InFile {
 public:
  size_t read_word(String& word) override;
  size_t read_word(char* buffer, size_t capacity) override;
  int read_int_text(char (&buffer)[kIntTextRoom]) override;
  size_t read_float_text(char (&buffer)[kFloatTextRoom]) override;
  int peek() override;
  void skip() override;
  size_t read_until(char* buffer, size_t max, char stop_char) override;
  int get() override;
  bool eof() const override { return at_end_; }
  bool failed() const override { return !open_; }
  bool good() const override { return !at_end_; }
  uint64_t tell() const override { return file_offset_ - window().size(); }
  void seek(uint64_t offset) override;
  int peek_at(ptrdiff_t distance) override;
  size_t read(void* buffer, size_t count) override;

 protected:
  /// A block, and room before it for the part of a character that the former block ended with.
  class Buffer {
   public:
    char* block() noexcept { return bytes_ + kHeadroom; }

   private:
    static constexpr size_t kHeadroom = 8;
    char bytes_[kHeadroom + kFileBufferSize];
  };

  BufferedInFile(bool open, uint64_t start_offset) noexcept
      : file_offset_(start_offset), at_end_(!open), open_(open) {}

  /// Gets the block at file_offset_ and calls show_block(). At the end, or on a failure, which goes
  /// to last_error_, sets at_end_ and returns false; what is left of the window stays.
  virtual bool fill() = 0;
  /// file_offset_ was changed; the window is empty.
  virtual void restart() = 0;
  /// Throws what became of last_error_.
  [[noreturn]] virtual void throw_failure() const = 0;

  /// Puts what is left of the window, at most one byte, before `block`. Returns its length.
  size_t keep_rest(char* block) noexcept;
  /// The window becomes `kept` bytes before `block` and `count` bytes of it.
  void show_block(const char* block, size_t kept, size_t count) noexcept;

  /// Where buffer_start_ to fill_end_ hold what the file has before file_offset_.
  const char* buffer_start_ = nullptr;
  uint64_t file_offset_;
  uint32_t last_error_ = 0;
  bool at_end_;

 private:
  size_t unit() const noexcept { return encoding == kText8Bit ? 1 : 2; }
  /// Whether the next character is in the window, or could be brought there.
  bool next_ready() { return window().size() >= unit() || fetch(); }
  bool fetch();
  int decode(const char* at) const;
  /// Where the byte at `offset` is in the buffer, or the buffer's end; null if it isn't there.
  const char* in_buffer(uint64_t offset) const noexcept;
  /// Likewise for a whole character.
  const char* held(uint64_t offset) const noexcept;
  int character_at(uint64_t offset);
  size_t take(char* buffer, size_t count);
  size_t take_text(char* buffer, size_t length, size_t limit);

  const bool open_;
};

}  // namespace ORLO
