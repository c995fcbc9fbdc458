#include "trellis/file_streams.h"

namespace Trellis {
namespace {

constexpr size_t kBlockSize = 16384;

}  // namespace

FileHolder::~FileHolder() {
  // What a full disk refuses at the very end is lost like what it refuses before.
  if (owner && file != nullptr) static_cast<void>(std::fclose(file));
}

FileBuffer::FileBuffer(std::FILE* file)
    : file_(file), block_(std::make_unique_for_overwrite<char[]>(kBlockSize)) {}

FileBuffer::int_type FileBuffer::underflow() {
  const size_t count = file_ != nullptr ? std::fread(block_.get(), 1, kBlockSize, file_) : 0;
  setg(block_.get(), block_.get(), block_.get() + count);
  return count != 0 ? traits_type::to_int_type(*gptr()) : traits_type::eof();
}

FileBuffer::int_type FileBuffer::overflow(int_type c) {
  if (!write_out()) return traits_type::eof();
  setp(block_.get(), block_.get() + kBlockSize);
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  return sputc(traits_type::to_char_type(c));
}

int FileBuffer::sync() {
  if (pbase() == nullptr) return 0;  // nothing was written
  return write_out() && file_ != nullptr && std::fflush(file_) == 0 ? 0 : -1;
}

/// False if not all could be written; what couldn't is dropped.
bool FileBuffer::write_out() {
  const auto count = static_cast<size_t>(pptr() - pbase());
  setp(block_.get(), block_.get());
  return file_ != nullptr && std::fwrite(block_.get(), 1, count, file_) == count;
}

tofstream::tofstream(const char* path) : tofstream(std::fopen(path, "wb"), true) {}

tofstream::tofstream(std::FILE* opened, bool is_owner)
    : FileHolder(opened, is_owner), std::ostream(nullptr), buffer_(opened) {
  rdbuf(&buffer_);
  if (file == nullptr) setstate(failbit);
}

tofstream::~tofstream() {
  if (file != nullptr) buffer_.pubsync();
}

tifstream::tifstream(const char* path) : tifstream(std::fopen(path, "rb"), true) {}

tifstream::tifstream(std::FILE* opened, bool is_owner)
    : FileHolder(opened, is_owner), std::istream(nullptr), buffer_(opened) {
  rdbuf(&buffer_);
  if (file == nullptr) setstate(failbit);
}

tifstream::~tifstream() = default;

}  // namespace Trellis
