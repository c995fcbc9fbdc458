// Lines of a file, whatever they end with: LF, CR or CR LF.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "orlo/in_file.h"

namespace ORLO {

/// A heap buffer that read_line() lets grow. It belongs to whoever made the holder and goes with
/// it.
class LineBuffer {
 public:
  using Reallocate = void* (*)(void* block, size_t size);

  /// Without a buffer: lines read into it are skipped.
  LineBuffer() noexcept = default;
  /// With a buffer of `capacity` bytes, which may be 0.
  explicit LineBuffer(size_t capacity, Reallocate reallocate = &std::realloc);
  ~LineBuffer() { std::free(buffer_); }
  LineBuffer(const LineBuffer&) = delete;
  LineBuffer& operator=(const LineBuffer&) = delete;

  bool has_buffer() const noexcept { return buffer_ != nullptr; }
  size_t capacity() const noexcept { return capacity_; }
  char* data() noexcept { return buffer_; }
  /// The last line, up to a NUL in it. Empty without a buffer.
  const char* c_str() const noexcept { return capacity_ != 0 ? buffer_ : ""; }
  /// Doubles the capacity, from 0 to 1,024. False if there is no memory for it.
  bool grow() noexcept;

 private:
  Reallocate reallocate_ = nullptr;
  char* buffer_ = nullptr;
  size_t capacity_ = 0;
};

/// Reads one line, without its end and with a NUL behind it. Returns its length; -1 at the end of
/// the file. If memory gives out the line ends there and the rest counts as the next one.
ptrdiff_t read_line(InFile& file, LineBuffer& line);
/// Likewise, at most `max` characters of it, at least 1; the rest of a longer line counts as the
/// next one. The buffer takes less than twice what that needs, or 1,024 bytes.
ptrdiff_t read_line(InFile& file, LineBuffer& line, size_t max);

}  // namespace ORLO
