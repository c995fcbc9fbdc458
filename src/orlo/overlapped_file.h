// Files with two buffers that read ahead and write behind while the caller is busy with the other
// one.
#pragma once

#include <memory>

#include "orlo/buffered_in.h"
#include "orlo/buffered_out.h"
#include "orlo/raw_file.h"

namespace ORLO {

class OverlappedInFile final : public BufferedInFile {
 public:
  /// The parameters are the platform's; see file_modes.h. The first read starts at once.
  OverlappedInFile(const char* file_name, uint32_t disposition, uint32_t share_mode, uint32_t flags,
                   uint64_t start_offset = 0);
  /// Over a file that is open already; null for one that couldn't be opened.
  explicit OverlappedInFile(std::unique_ptr<OverlappedRawFile> file, uint64_t start_offset = 0);
  ~OverlappedInFile() override;

 private:
  bool fill() override;
  void restart() override;
  [[noreturn]] void throw_failure() const override;
  void start_next();

  const std::unique_ptr<OverlappedRawFile> file_;
  Buffer buffers_[2];
  Buffer* current_buffer_ = &buffers_[0];
  Buffer* next_buffer_ = &buffers_[1];
  /// A read of what is at file_offset_ into the next buffer has been started.
  bool pending_ = false;
};

class OverlappedOutFile final : public BufferedOutFile {
 public:
  OverlappedOutFile(const char* file_name, uint32_t disposition, uint32_t share_mode,
                    uint32_t flags);
  explicit OverlappedOutFile(std::unique_ptr<OverlappedRawFile> file) noexcept;
  ~OverlappedOutFile() override;

  /// Waits until all is written.
  bool flush() override;

 private:
  bool drain() override;
  void finish_pending();

  const std::unique_ptr<OverlappedRawFile> file_;
  char buffers_[2][kFileBufferSize];
  size_t current_ = 0;
  /// Bytes of the write under way, 0 for none.
  size_t pending_size_ = 0;
};

}  // namespace ORLO
