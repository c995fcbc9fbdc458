#include "orlo/buffered_in.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "orlo/exception.h"
#include "orlo/locale.h"

namespace ORLO {
namespace {

constexpr unsigned kFirstBeyondAscii = 0x80;

unsigned char byte(char character) noexcept {
  return static_cast<unsigned char>(character);
}

int narrowed(char16_t wide) {
  if (wide < kFirstBeyondAscii) return wide;
  const std::string text = system_locale().narrow(&wide, 1);
  return text.empty() ? '?' : byte(text[0]);
}

}  // namespace

size_t BufferedInFile::keep_rest(char* block) noexcept {
  const std::string_view rest = window();
  if (!rest.empty()) std::memmove(block - rest.size(), rest.data(), rest.size());
  return rest.size();
}

void BufferedInFile::show_block(const char* block, size_t kept, size_t count) noexcept {
  buffer_start_ = position_ = block - kept;
  fill_end_ = block + count;
  file_offset_ += count;
}

bool BufferedInFile::fetch() {
  while (window().size() < unit()) {
    if (!fill()) return false;
  }
  return true;
}

int BufferedInFile::decode(const char* at) const {
  if (encoding == kText8Bit) return byte(*at);
  const bool swapped = encoding == kText16BitSwapped;
  const unsigned low = byte(at[swapped ? 1 : 0]);
  const unsigned high = byte(at[swapped ? 0 : 1]);
  return narrowed(static_cast<char16_t>(high << 8 | low));
}

int BufferedInFile::peek() {
  return next_ready() ? decode(position_) : -1;
}

void BufferedInFile::skip() {
  if (next_ready()) position_ += unit();
}

int BufferedInFile::get() {
  if (!next_ready()) return -1;
  const int character = decode(position_);
  position_ += unit();
  return character;
}

const char* BufferedInFile::in_buffer(uint64_t offset) const noexcept {
  const auto size = static_cast<uint64_t>(fill_end_ - buffer_start_);
  if (offset > file_offset_ || file_offset_ - offset > size) return nullptr;
  return fill_end_ - static_cast<ptrdiff_t>(file_offset_ - offset);
}

const char* BufferedInFile::held(uint64_t offset) const noexcept {
  return in_buffer(offset + unit()) != nullptr ? in_buffer(offset) : nullptr;
}

void BufferedInFile::seek(uint64_t offset) {
  if (!open_) return;
  at_end_ = false;
  last_error_ = 0;
  if (const char* const here = in_buffer(offset)) {
    position_ = here;
    return;
  }
  buffer_start_ = position_ = fill_end_ = nullptr;
  file_offset_ = offset;
  restart();
}

int BufferedInFile::peek_at(ptrdiff_t distance) {
  constexpr int64_t kFarthest = std::numeric_limits<int64_t>::max() / 4;
  const uint64_t here = tell();
  if (!open_ || here > kFarthest || distance > kFarthest || distance < -kFarthest) return -1;
  const int64_t target =
      static_cast<int64_t>(here) + int64_t{distance} * static_cast<int64_t>(unit());
  if (target < 0) return -1;
  return character_at(static_cast<uint64_t>(target));
}

/// Leaves the file as it was. Whoever looks ahead looks more than once, so the window is brought to
/// the next character where that helps.
int BufferedInFile::character_at(uint64_t offset) {
  if (const char* const here = held(offset)) return decode(here);
  const bool was_at_end = at_end_;
  const uint32_t former_error = last_error_;
  const uint64_t next = tell();
  int character = -1;
  if (window().size() < unit() && next_ready() && held(offset) != nullptr) {
    character = decode(held(offset));
  } else {
    seek(offset);
    character = get();
    seek(next);
    next_ready();
  }
  at_end_ = was_at_end;
  if (was_at_end) last_error_ = former_error;
  return character;
}

size_t BufferedInFile::take(char* buffer, size_t count) {
  if (encoding != kText8Bit) {
    *buffer = static_cast<char>(get());
    return 1;
  }
  const size_t piece = std::min(count, window().size());
  std::memcpy(buffer, position_, piece);
  position_ += piece;
  return piece;
}

size_t BufferedInFile::read(void* buffer, size_t count) {
  auto* const target = static_cast<char*>(buffer);
  size_t done = 0;
  while (done < count && next_ready())
    done += take(target + done, count - done);
  if (done < count && exception_mode()) {
    if (last_error_ != 0) throw_failure();
    throw ORLOException(kErrorReadBeyondEnd);
  }
  return done;
}

size_t BufferedInFile::read_until(char* buffer, size_t max, char stop_char) {
  size_t count = 0;
  while (count < max && next_ready()) {
    if (encoding == kText8Bit) {
      const std::string_view here = window().substr(0, max - count);
      const size_t length = here.find(stop_char);
      count += take(buffer + count, std::min(length, here.size()));
      if (length != std::string_view::npos) break;
    } else {
      const auto character = static_cast<char>(peek());
      if (character == stop_char) break;
      buffer[count++] = character;
      skip();
    }
  }
  buffer[count] = '\0';
  return count;
}

}  // namespace ORLO
