// What both kinds of files have in common in writing.
#pragma once

#include <string_view>

#include "orlo/buffered_in.h"
#include "orlo/out_file.h"
#include "orlo/raw_file.h"

namespace ORLO {

class BufferedOutFile : public OutFile {
 public:
  size_t put(char character) override { return write(&character, 1); }
  size_t write(const void* data, size_t count) override;
  bool failed() const override { return last_error_ != 0; }
  bool good() const override { return last_error_ == 0; }
  uint64_t tell() const override { return written_ + held_back().size(); }
  void seek(uint64_t offset) override;
  /// 0, or the system's code of the first failure.
  uint32_t error() const noexcept { return last_error_; }

 protected:
  explicit BufferedOutFile(bool open) noexcept;

  /// Has the buffer written and calls use_buffer() with an empty one. Returns good().
  virtual bool drain() = 0;

  /// The next bytes go into `buffer`, of kFileBufferSize bytes.
  void use_buffer(char* buffer) noexcept;
  std::string_view held_back() const noexcept;
  /// Takes note of a failure, which a write of less than `size` bytes is too.
  void note_result(const Transfer& done, size_t size) noexcept;

  /// Offset in the file of the buffer's first byte.
  uint64_t written_ = 0;
  /// The first failure; it stays.
  uint32_t last_error_ = 0;

 private:
  size_t write_bytes(const char* bytes, size_t count);

  char* buffer_start_ = nullptr;
  char* position_ = nullptr;
};

}  // namespace ORLO
