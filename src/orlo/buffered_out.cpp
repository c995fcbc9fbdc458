#include "orlo/buffered_out.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "orlo/locale.h"

namespace ORLO {
namespace {

// Codes of the target's system.
constexpr uint32_t kErrorInvalidParameter = 87;
constexpr uint32_t kErrorDiskFull = 112;

/// The text in 16 bits to a character, as bytes.
std::string widened(const char* text, size_t count, bool swapped) {
  const std::u16string wide = system_locale().widen(text, count);
  std::string bytes;
  bytes.reserve(2 * wide.size());
  for (const char16_t character : wide) {
    const auto low = static_cast<char>(character & 0xFF);
    const auto high = static_cast<char>(character >> 8);
    bytes += swapped ? high : low;
    bytes += swapped ? low : high;
  }
  return bytes;
}

}  // namespace

BufferedOutFile::BufferedOutFile(bool open) noexcept {
  if (open) return;
  last_error_ = kErrorInvalidParameter;
  set_last_error(last_error_);
}

void BufferedOutFile::use_buffer(char* buffer) noexcept {
  buffer_start_ = position_ = buffer;
}

std::string_view BufferedOutFile::held_back() const noexcept {
  return {buffer_start_, static_cast<size_t>(position_ - buffer_start_)};
}

void BufferedOutFile::note_result(const Transfer& done, size_t size) noexcept {
  if (last_error_ != 0) return;
  last_error_ = done.error == 0 && done.count < size ? kErrorDiskFull : done.error;
}

size_t BufferedOutFile::write_bytes(const char* bytes, size_t count) {
  size_t done = 0;
  while (done < count && last_error_ == 0) {
    const size_t room = kFileBufferSize - held_back().size();
    if (room == 0) {
      drain();
      continue;
    }
    const size_t piece = std::min(room, count - done);
    std::memcpy(position_, bytes + done, piece);
    position_ += piece;
    done += piece;
  }
  return done;
}

size_t BufferedOutFile::write(const void* data, size_t count) {
  const auto* const text = static_cast<const char*>(data);
  if (encoding == kText8Bit) return write_bytes(text, count);
  if (count == 0) return 0;
  const std::string bytes = widened(text, count, encoding == kText16BitSwapped);
  const size_t done = write_bytes(bytes.data(), bytes.size());
  return done == bytes.size() ? count : std::min(count, done / 2);
}

void BufferedOutFile::seek(uint64_t offset) {
  if (flush()) written_ = offset;
}

}  // namespace ORLO
