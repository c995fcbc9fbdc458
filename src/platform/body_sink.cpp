#include "platform/body_sink.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

constexpr uint64_t kKilobyte = 1024;

}  // namespace

std::optional<int> content_length(const char* text) noexcept {
  using Limits = std::numeric_limits<int>;
  constexpr int kNone = -1;
  // Runs against its own limits where a number is still longer.
  const long long length = std::strtoll(text, nullptr, 10);
  if (length == kNone || length < Limits::min() || length > Limits::max()) return std::nullopt;
  return static_cast<int>(length);
}

void BodySink::announce(std::optional<int> length) {
  length_ = length;
  if (length && progress_ != nullptr) progress_->set_range(*length / static_cast<int>(kKilobyte));
}

bool BodySink::write(const char* block, size_t size) {
  const uint64_t room = limit_ - total_;
  const auto taken = static_cast<size_t>(std::min<uint64_t>(size, room));
  stream_.write(block, static_cast<std::streamsize>(taken));
  total_ += taken;
  if (progress_ != nullptr) progress_->set_position(static_cast<int>(total_ / kKilobyte));
  return taken == size;
}

bool BodySink::complete() const noexcept {
  return !length_ || *length_ == static_cast<int64_t>(total_);
}
