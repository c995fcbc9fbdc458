// Files read and written through one buffer, block by block.
#pragma once

#include <memory>

#include "orlo/buffered_in.h"
#include "orlo/buffered_out.h"
#include "orlo/raw_file.h"

namespace ORLO {

class SyncInFile final : public BufferedInFile {
 public:
  /// The parameters are the platform's; see file_modes.h.
  SyncInFile(const char* file_name, uint32_t disposition, uint32_t share_mode, uint32_t flags,
             uint64_t start_offset = 0);
  /// Over a file that is open already; null for one that couldn't be opened.
  explicit SyncInFile(std::unique_ptr<RawFile> file, uint64_t start_offset = 0) noexcept;

 private:
  bool fill() override;
  void restart() override {}
  [[noreturn]] void throw_failure() const override;

  const std::unique_ptr<RawFile> file_;
  Buffer buffer_;
};

class SyncOutFile final : public BufferedOutFile {
 public:
  SyncOutFile(const char* file_name, uint32_t disposition, uint32_t share_mode, uint32_t flags);
  explicit SyncOutFile(std::unique_ptr<RawFile> file) noexcept;
  ~SyncOutFile() override { SyncOutFile::flush(); }

  bool flush() override { return drain(); }

 private:
  bool drain() override;

  const std::unique_ptr<RawFile> file_;
  char buffer_[kFileBufferSize];
};

}  // namespace ORLO
