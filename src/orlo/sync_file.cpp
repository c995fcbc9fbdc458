#include "orlo/sync_file.h"

#include <utility>

#include "orlo/exception.h"

namespace ORLO {

SyncInFile::SyncInFile(const char* file_name, uint32_t disposition, uint32_t share_mode,
                       uint32_t flags, uint64_t start_offset)
    : SyncInFile(open_raw_file(file_name, FileAccess::read, disposition, share_mode, flags),
                 start_offset) {}

SyncInFile::SyncInFile(std::unique_ptr<RawFile> file, uint64_t start_offset) noexcept
    : BufferedInFile(file != nullptr, start_offset), file_(std::move(file)) {}

bool SyncInFile::fill() {
  if (at_end_) return false;
  char* const block = buffer_.block();
  const size_t kept = keep_rest(block);
  const Transfer done = file_->read(file_offset_, block, kFileBufferSize);
  last_error_ = done.error;
  at_end_ = done.error != 0 || done.count == 0;
  // At the end the former block is still whole, so that seeking back in it stays cheap; not so
  // after a failure, which may have left anything in its place.
  if (done.error != 0) show_block(block, kept, 0);
  if (!at_end_) show_block(block, kept, done.count);
  return !at_end_;
}

void SyncInFile::throw_failure() const {
  set_last_error(last_error_);
  throw LWE();
}

SyncOutFile::SyncOutFile(const char* file_name, uint32_t disposition, uint32_t share_mode,
                         uint32_t flags)
    : SyncOutFile(open_raw_file(file_name, FileAccess::write, disposition, share_mode, flags)) {}

SyncOutFile::SyncOutFile(std::unique_ptr<RawFile> file) noexcept
    : BufferedOutFile(file != nullptr), file_(std::move(file)) {
  use_buffer(buffer_);
}

bool SyncOutFile::drain() {
  const size_t size = held_back().size();
  if (size != 0 && last_error_ == 0) {
    note_result(file_->write(written_, held_back().data(), size), size);
    written_ += size;
  }
  use_buffer(buffer_);
  return last_error_ == 0;
}

}  // namespace ORLO
