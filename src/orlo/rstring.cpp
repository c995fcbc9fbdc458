#include "orlo/rstring.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>

#include "orlo/assertion.h"
#include "orlo/exception.h"
#include "orlo/locale.h"

namespace ORLO {
namespace {

constexpr size_t kTerminator = 1;
constexpr size_t kOverhead = 3 * sizeof(uint32_t) + kTerminator;
constexpr size_t kFirstGrowth = 128;
constexpr size_t kLargestBlock = std::numeric_limits<int32_t>::max();
// A formatted text up to this size is built on the stack.
constexpr size_t kStackRoom = 2048;

size_t block_size(size_t length) {
  if (length > kLargestBlock - kOverhead) throw std::bad_alloc();
  return length + kOverhead;
}

size_t joined_length(size_t a, size_t b) {
  return block_size(a) + block_size(b) - 2 * kOverhead;
}

size_t grown_size(size_t needed, size_t capacity) noexcept {
  // A block of minimal size grows to fit: most texts are set once and then kept.
  if (capacity <= kOverhead) return needed;
  if (needed < kFirstGrowth) return kFirstGrowth;
  return std::min(2 * needed, kLargestBlock);
}

size_t text_length(const char* text) noexcept {
  return text == nullptr ? 0 : std::strlen(text);
}

void copy_bytes(char* to, const char* from, size_t length) noexcept {
  if (length != 0) std::memcpy(to, from, length);
}

}  // namespace

String::String() : String(nullptr, 0, nullptr, 0) {}

String::String(const char* text) : String(text, text_length(text), nullptr, 0) {}

String::String(const char16_t* wide) : String() {
  const size_t units = wide == nullptr ? 0 : std::char_traits<char16_t>::length(wide);
  const std::string narrow = system_locale().narrow(wide, units);
  assign(narrow.data(), std::min(narrow.size(), units));
}

String::String(const String& other) noexcept : text_(other.text_) {
  std::atomic_ref(header().refcount).fetch_add(1, std::memory_order_relaxed);
}

String::String(const char* first, const char* last) {
  const bool ordered = check_assertion(!std::less<>()(last, first), "e>=b", "rstring", 253);
  const size_t length = ordered ? static_cast<size_t>(last - first) : 0;
  text_ = allocate(length);
  copy_bytes(text_, first, length);
}

String::String(const char* a, size_t a_length, const char* b, size_t b_length)
    : text_(allocate(joined_length(a_length, b_length))) {
  copy_bytes(text_, a, a_length);
  copy_bytes(text_ + a_length, b, b_length);
}

String::String(const std::string& text) : String(text.data(), text.size(), nullptr, 0) {}

String::~String() {
  release();
}

String& String::operator=(const String& other) noexcept {
  if (this != &other) assign(other);
  return *this;
}

String& String::operator=(const char* text) {
  assign(text);
  return *this;
}

char* String::allocate(size_t length) {
  const size_t capacity = block_size(length);
  void* const block = std::malloc(capacity);
  if (block == nullptr) throw_out_of_memory();
  auto* const header =
      new (block) Header{static_cast<uint32_t>(length), static_cast<uint32_t>(capacity), 1};
  char* const text = reinterpret_cast<char*>(header + 1);
  text[length] = '\0';
  return text;
}

void String::release() noexcept {
  const int32_t holders =
      std::atomic_ref(header().refcount).fetch_sub(1, std::memory_order_acq_rel);
  if (holders < 2) std::free(&header());
}

bool String::shared() const noexcept {
  // atomic_ref can't refer to a const object.
  auto& refcount = const_cast<String*>(this)->header().refcount;
  return std::atomic_ref(refcount).load(std::memory_order_acquire) > 1;
}

bool String::holds(const char* text) const noexcept {
  // Not only up to the length: a shrunken text still has its old bytes behind it.
  const std::less<> before;
  return !before(text, text_) && before(text, text_ + (capacity() - sizeof(Header)));
}

char* String::writable() {
  make_unique();
  return text_;
}

void String::assign(const String& other) noexcept {
  if (shares_block_with(other)) return;
  String copy(other);
  swap(copy);
}

void String::assign(const char* text) {
  assign(text, text_length(text));
}

void String::assign(const char* text, size_t length) {
  if (holds(text)) {
    String piece(text, length, nullptr, 0);
    swap(piece);
    return;
  }
  resize(length);
  copy_bytes(text_, text, length);
}

void String::assign_wide(const char16_t* wide, size_t length) {
  const size_t units =
      wide == nullptr ? 0 : static_cast<size_t>(std::find(wide, wide + length, u'\0') - wide);
  const std::string narrow = system_locale().narrow(wide, units);
  const size_t converted = std::min(narrow.size(), length);
  resize(length);
  copy_bytes(text_, narrow.data(), converted);
  std::fill(text_ + converted, text_ + length, '\0');
}

void String::append(const String& other) {
  append(other.c_str(), other.length());
}

void String::append(const char* text) {
  append(text, text_length(text));
}

void String::append(const char* text, size_t length) {
  if (length == 0) return;
  const size_t old_length = this->length();
  if (holds(text)) {
    String joined(text_, old_length, text, length);
    swap(joined);
    return;
  }
  resize(joined_length(old_length, length));
  copy_bytes(text_ + old_length, text, length);
}

void String::append(char character) {
  append(&character, 1);
}

void String::resize(size_t length) {
  const size_t old_length = this->length();
  if (!shared()) {
    if (length != old_length) adjust(length);
    return;
  }
  const size_t kept = std::min(length, old_length);
  char* const fresh = allocate(length);
  copy_bytes(fresh, text_, kept);
  std::fill(fresh + kept, fresh + length, '\0');
  release();
  text_ = fresh;
}

void String::adjust(size_t length) {
  const size_t needed = block_size(length);
  if (needed > capacity()) reallocate(grown_size(needed, capacity()));
  header().length = static_cast<uint32_t>(length);
  text_[length] = '\0';
}

void String::reallocate(size_t capacity) {
  void* const block = std::realloc(&header(), capacity);
  if (block == nullptr) throw_out_of_memory();
  auto* const header = static_cast<Header*>(block);
  header->capacity = static_cast<uint32_t>(capacity);
  text_ = reinterpret_cast<char*>(header + 1);
}

void String::make_unique() {
  if (!shared()) return;
  String copy(text_, length(), nullptr, 0);
  swap(copy);
}

void String::compact() {
  const size_t fitting = block_size(length());
  if (fitting >= capacity()) return;
  if (shared()) {
    make_unique();
  } else {
    reallocate(fitting);
  }
}

bool String::replace(const char* what, const char* by) {
  const size_t what_length = text_length(what);
  if (what_length == 0) return false;
  const char* rest = text_;
  const char* hit = std::strstr(rest, what);
  if (hit == nullptr) return false;
  String result;
  for (; hit != nullptr; hit = std::strstr(rest, what)) {
    result.append(rest, static_cast<size_t>(hit - rest));
    result.append(by);
    rest = hit + what_length;
  }
  result.append(rest, length() - static_cast<size_t>(rest - text_));
  if (result.length() == length() && std::strcmp(result.c_str(), text_) == 0) return false;
  swap(result);
  return true;
}

void String::swap(String& other) noexcept {
  std::swap(text_, other.text_);
}

namespace {

// Renders into a buffer that the text surely fits; where a format text is wrong, into what there
// is.
template <typename Sink>
size_t with_rendered(const char* format, const FormatArg* args, size_t count, Sink&& sink) {
  const size_t measured = measure_format(format, args, count);
  char on_stack[kStackRoom];
  if (measured <= kStackRoom) {
    const size_t length = render_format(on_stack, kStackRoom, format, args, count);
    sink(on_stack, length);
    return length;
  }
  const auto on_heap = std::make_unique_for_overwrite<char[]>(measured);
  const size_t length = render_format(on_heap.get(), measured, format, args, count);
  sink(on_heap.get(), length);
  return length;
}

}  // namespace

size_t String::assign_formatted(const char* format, const FormatArg* args, size_t count) {
  return with_rendered(format, args, count,
                       [this](const char* text, size_t length) { assign(text, length); });
}

size_t String::append_formatted(const char* format, const FormatArg* args, size_t count) {
  return with_rendered(format, args, count,
                       [this](const char* text, size_t length) { append(text, length); });
}

}  // namespace ORLO
