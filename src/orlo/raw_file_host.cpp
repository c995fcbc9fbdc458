// The stand-in of build machines. Share modes and flags mean nothing here.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "orlo/exception.h"
#include "orlo/owned_handle.h"
#include "orlo/raw_file.h"

namespace ORLO {
namespace {

struct DescriptorTraits {
  using Handle = int;
  static Handle invalid() noexcept { return -1; }
  static void close(Handle handle) noexcept { ::close(handle); }
};
using OwnedDescriptor = OwnedHandle<DescriptorTraits>;

class DescriptorFile final : public RawFile {
 public:
  explicit DescriptorFile(OwnedDescriptor descriptor) noexcept
      : descriptor_(std::move(descriptor)) {}

  Transfer read(uint64_t offset, char* block, size_t size) override {
    return result(::pread(descriptor_.get(), block, size, static_cast<off_t>(offset)));
  }

  Transfer write(uint64_t offset, const char* block, size_t size) override {
    Transfer all;
    while (all.count < size && all.error == 0) {
      const Transfer piece = result(::pwrite(descriptor_.get(), block + all.count, size - all.count,
                                             static_cast<off_t>(offset + all.count)));
      all.count += piece.count;
      all.error = piece.error;
    }
    return all;
  }

 private:
  static Transfer result(ssize_t count) noexcept {
    if (count < 0) return {0, static_cast<uint32_t>(errno)};
    return {static_cast<size_t>(count), 0};
  }

  const OwnedDescriptor descriptor_;
};

/// Written to from where it stands; a pipe has no offsets.
class DescriptorStream final : public RawFile {
 public:
  explicit DescriptorStream(OwnedDescriptor descriptor) noexcept
      : descriptor_(std::move(descriptor)) {}

  Transfer read(uint64_t, char*, size_t) override { return {0, EBADF}; }

  Transfer write(uint64_t, const char* block, size_t size) override {
    Transfer all;
    while (all.count < size && all.error == 0) {
      const ssize_t count = ::write(descriptor_.get(), block + all.count, size - all.count);
      if (count < 0) all.error = static_cast<uint32_t>(errno);
      if (count > 0) all.count += static_cast<size_t>(count);
    }
    return all;
  }

 private:
  const OwnedDescriptor descriptor_;
};

int creation(uint32_t disposition) noexcept {
  constexpr int kFlags[] = {0, O_CREAT | O_EXCL, O_CREAT | O_TRUNC, 0, O_CREAT, O_TRUNC};
  return disposition < std::size(kFlags) ? kFlags[disposition] : 0;
}

bool is_directory(int descriptor) noexcept {
  struct stat status = {};
  return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::unique_ptr<RawFile> open_raw_file(const char* file_name, FileAccess access,
                                       uint32_t disposition, uint32_t, uint32_t) {
  constexpr mode_t kEverybody = 0666;
  const int mode = access == FileAccess::read ? O_RDONLY : O_WRONLY;
  OwnedDescriptor descriptor(
      ::open(file_name, mode | O_CLOEXEC | creation(disposition), kEverybody));
  // The target's files don't open directories either.
  if (!descriptor || is_directory(descriptor.get())) return nullptr;
  return std::make_unique<DescriptorFile>(std::move(descriptor));
}

std::unique_ptr<OverlappedRawFile> open_overlapped_raw_file(const char* file_name,
                                                            FileAccess access, uint32_t disposition,
                                                            uint32_t share_mode, uint32_t flags) {
  return transfer_at_once(open_raw_file(file_name, access, disposition, share_mode, flags));
}

std::unique_ptr<RawFile> open_standard_stream(StandardStream stream) {
  OwnedDescriptor descriptor(
      ::dup(stream == StandardStream::output ? STDOUT_FILENO : STDERR_FILENO));
  if (!descriptor) return nullptr;
  return std::make_unique<DescriptorStream>(std::move(descriptor));
}

uint32_t rename_file(const char* old_name, const char* new_name) noexcept {
  // The target's files that may only be read aren't replaced either.
  if (::access(new_name, W_OK) != 0 && errno != ENOENT) return static_cast<uint32_t>(errno);
  return std::rename(old_name, new_name) == 0 ? 0 : static_cast<uint32_t>(errno);
}

String create_temporary_file(const String& neighbour) {
  const std::string path = neighbour.c_str();
  const size_t slash = path.rfind('/');
  std::string name = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  name += "zlvXXXXXX.tmp";
  constexpr int kSuffix = 4;
  const OwnedDescriptor created(::mkstemps(name.data(), kSuffix));
  if (!created) throw LWE();
  return name;
}

void delete_file(const char* file_name) noexcept {
  static_cast<void>(::unlink(file_name));
}

void set_last_error(uint32_t code) noexcept {
  errno = static_cast<int>(code);
}

}  // namespace ORLO
