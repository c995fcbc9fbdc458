#include "orlo/read_line.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

namespace ORLO {
namespace {

constexpr size_t kFirstCapacity = 1024;
constexpr size_t kUnlimited = std::numeric_limits<ptrdiff_t>::max();

bool is_line_end(int character) noexcept {
  return character == '\n' || character == '\r';
}

constexpr size_t kOnes = std::numeric_limits<size_t>::max() / 0xFF;

/// The top bit of each byte that is 0, and perhaps of some behind the first such one.
constexpr size_t zero_bytes(size_t word) noexcept {
  return (word - kOnes) & ~word & kOnes * 0x80;
}

constexpr size_t line_ends(size_t word) noexcept {
  return zero_bytes(word ^ kOnes * '\n') | zero_bytes(word ^ kOnes * '\r');
}

// A word's first byte is its lowest.
static_assert(std::endian::native == std::endian::little);

/// Length of `text` up to its first line end. Goes by words: two searches in the runtime, one for
/// each kind, take more than twice as long on the target.
size_t length_of_run(std::string_view text) noexcept {
  const size_t whole_words = text.size() - text.size() % sizeof(size_t);
  size_t at = 0;
  for (; at < whole_words; at += sizeof(size_t)) {
    size_t word = 0;
    std::memcpy(&word, text.data() + at, sizeof word);
    const size_t found = line_ends(word);
    if (found != 0) return at + static_cast<size_t>(std::countr_zero(found)) / 8;
  }
  while (at < text.size() && !is_line_end(text[at]))
    ++at;
  return at;
}

/// The line in the making.
class Line {
 public:
  Line(LineBuffer& buffer, size_t max) noexcept : buffer_(buffer), max_(max) {}

  size_t count() const noexcept { return count_; }
  bool full() const noexcept { return count_ == max_; }

  /// Returns how many characters fit.
  size_t append(const char* text, size_t length) noexcept {
    const size_t wanted = std::min(length, max_ - count_);
    const size_t taken = buffer_.has_buffer() ? make_room(wanted) : wanted;
    if (buffer_.has_buffer() && taken != 0) std::memcpy(buffer_.data() + count_, text, taken);
    count_ += taken;
    return taken;
  }

  void terminate() noexcept {
    if (buffer_.capacity() != 0) buffer_.data()[count_] = '\0';
  }

 private:
  /// How many of `wanted` characters there is room for, behind them one for the NUL.
  size_t make_room(size_t wanted) noexcept {
    for (;;) {
      const size_t capacity = buffer_.capacity();
      const size_t room = capacity == 0 ? 0 : capacity - 1 - count_;
      if (room >= wanted || !buffer_.grow()) return std::min(room, wanted);
    }
  }

  LineBuffer& buffer_;
  const size_t max_;
  size_t count_ = 0;
};

/// Takes what the window has of the line. False if not all of it fits.
bool append_run(InFile& file, Line& line) {
  const size_t length = length_of_run(file.window());
  const size_t taken = line.append(file.window().data(), length);
  file.advance(taken);
  return taken == length;
}

/// As file.peek(), without a call where the window tells.
int next_character(InFile& file) {
  if (file.encoding != kText8Bit || file.window().empty()) return file.peek();
  return static_cast<unsigned char>(file.window()[0]);
}

/// Goes past the character that next_character() has just told of.
void skip_character(InFile& file) {
  if (file.encoding == kText8Bit) {
    file.advance(1);
  } else {
    file.skip();
  }
}

void skip_line_end(InFile& file, int character) {
  skip_character(file);
  if (character == '\r' && next_character(file) == '\n') skip_character(file);
}

/// What follows can't be kept. A line without a single character must go, or reading it would
/// never get on.
void give_up(InFile& file, const Line& line) {
  if (line.full() || line.count() != 0) return;
  LineBuffer none;
  read_line(file, none);
}

}  // namespace

LineBuffer::LineBuffer(size_t capacity, Reallocate reallocate)
    : reallocate_(reallocate),
      buffer_(static_cast<char*>(std::malloc(std::max<size_t>(capacity, 1)))),
      capacity_(capacity) {
  if (buffer_ == nullptr) throw std::bad_alloc();
  *buffer_ = '\0';
}

bool LineBuffer::grow() noexcept {
  if (capacity_ > std::numeric_limits<size_t>::max() / 2) return false;
  const size_t grown = capacity_ == 0 ? kFirstCapacity : 2 * capacity_;
  void* const block = reallocate_(buffer_, grown);
  if (block == nullptr) return false;
  buffer_ = static_cast<char*>(block);
  capacity_ = grown;
  return true;
}

ptrdiff_t read_line(InFile& file, LineBuffer& buffer) {
  return read_line(file, buffer, kUnlimited);
}

ptrdiff_t read_line(InFile& file, LineBuffer& buffer, size_t max) {
  Line line(buffer, max);
  bool at_end = false;
  for (;;) {
    const bool fits = file.encoding != kText8Bit || append_run(file, line);
    const int character = next_character(file);
    at_end = character == -1;
    if (at_end) break;
    if (is_line_end(character)) {
      skip_line_end(file, character);
      break;
    }
    const auto next = static_cast<char>(character);
    if (!fits || line.append(&next, 1) == 0) {
      give_up(file, line);
      break;
    }
    skip_character(file);
  }
  line.terminate();
  return at_end && line.count() == 0 ? -1 : static_cast<ptrdiff_t>(line.count());
}

}  // namespace ORLO
