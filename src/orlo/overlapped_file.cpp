#include "orlo/overlapped_file.h"

#include <utility>

#include "orlo/exception.h"

namespace ORLO {

OverlappedInFile::OverlappedInFile(const char* file_name, uint32_t disposition, uint32_t share_mode,
                                   uint32_t flags, uint64_t start_offset)
    : OverlappedInFile(
          open_overlapped_raw_file(file_name, FileAccess::read, disposition, share_mode, flags),
          start_offset) {}

OverlappedInFile::OverlappedInFile(std::unique_ptr<OverlappedRawFile> file, uint64_t start_offset)
    : BufferedInFile(file != nullptr, start_offset), file_(std::move(file)) {
  if (file_ != nullptr) start_next();
}

OverlappedInFile::~OverlappedInFile() {
  // The buffers go with this object.
  if (file_ != nullptr) file_->cancel();
}

void OverlappedInFile::start_next() {
  last_error_ = file_->start_read(file_offset_, next_buffer_->block(), kFileBufferSize);
  pending_ = last_error_ == 0;
}

bool OverlappedInFile::fill() {
  if (at_end_) return false;
  // None is under way after an end, if a seek has led back from it.
  if (!pending_ && last_error_ == 0) start_next();
  Transfer done;
  if (std::exchange(pending_, false)) {
    done = file_->wait();
    last_error_ = done.error;
  }
  if (last_error_ != 0 || done.count == 0) {
    at_end_ = true;
    return false;
  }
  std::swap(current_buffer_, next_buffer_);
  char* const block = current_buffer_->block();
  show_block(block, keep_rest(block), done.count);
  // A failure to start it counts when the window is used up.
  start_next();
  return true;
}

void OverlappedInFile::restart() {
  file_->cancel();
  start_next();
}

void OverlappedInFile::throw_failure() const {
  throw SDKException(last_error_);
}

OverlappedOutFile::OverlappedOutFile(const char* file_name, uint32_t disposition,
                                     uint32_t share_mode, uint32_t flags)
    : OverlappedOutFile(
          open_overlapped_raw_file(file_name, FileAccess::write, disposition, share_mode, flags)) {}

OverlappedOutFile::OverlappedOutFile(std::unique_ptr<OverlappedRawFile> file) noexcept
    : BufferedOutFile(file != nullptr), file_(std::move(file)) {
  use_buffer(buffers_[current_]);
}

OverlappedOutFile::~OverlappedOutFile() {
  OverlappedOutFile::flush();
}

void OverlappedOutFile::finish_pending() {
  if (pending_size_ != 0) note_result(file_->wait(), pending_size_);
  pending_size_ = 0;
}

bool OverlappedOutFile::drain() {
  finish_pending();
  const size_t size = held_back().size();
  if (size != 0 && last_error_ == 0) {
    last_error_ = file_->start_write(written_, held_back().data(), size);
    if (last_error_ == 0) pending_size_ = size;
    written_ += size;
    current_ = 1 - current_;
  }
  use_buffer(buffers_[current_]);
  return last_error_ == 0;
}

bool OverlappedOutFile::flush() {
  drain();
  finish_pending();
  return last_error_ == 0;
}

}  // namespace ORLO
