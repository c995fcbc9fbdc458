// What becomes of a body that a server sends, whoever fetches it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/internet.h"

/// A Content-Length as atoi reads it; none if it is -1 or no int holds it. No body has a length
/// below 0, so one that was told such a length is never complete.
std::optional<int> content_length(const char* text) noexcept;

/// Gives the body of one transfer to its stream, with its limit and its progress.
class BodySink {
 public:
  /// `progress` may be null.
  BodySink(uint64_t limit, std::ostream& stream, TransferProgress* progress) noexcept
      : limit_(limit), stream_(stream), progress_(progress) {}

  /// What the server has told; before the first block.
  void announce(std::optional<int> length);
  /// False if the body has gone beyond the limit; what lies within is written all the same.
  bool write(const char* block, size_t size);
  /// Whether the body is as long as was told, if it was.
  bool complete() const noexcept;

 private:
  const uint64_t limit_;
  std::ostream& stream_;
  TransferProgress* const progress_;
  std::optional<int> length_;
  uint64_t total_ = 0;
};
