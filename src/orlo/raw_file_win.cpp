#include <windows.h>

#include <utility>

#include "orlo/exception.h"
#include "orlo/kernel_handles.h"
#include "orlo/raw_file.h"

namespace ORLO {
namespace {

OwnedFile open(const char* file_name, FileAccess access, uint32_t disposition, uint32_t share_mode,
               uint32_t flags) {
  return OwnedFile(CreateFileA(file_name, static_cast<DWORD>(access), share_mode, nullptr,
                               disposition, flags, nullptr));
}

OVERLAPPED at_offset(uint64_t offset) noexcept {
  OVERLAPPED request = {};
  request.Offset = static_cast<DWORD>(offset);
  request.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return request;
}

/// The system tells of the end as of an error.
Transfer result(DWORD error, DWORD count) noexcept {
  if (error == ERROR_HANDLE_EOF) return {};
  return {count, error};
}

class HandleFile final : public RawFile {
 public:
  explicit HandleFile(OwnedFile file) noexcept : file_(std::move(file)) {}

  Transfer read(uint64_t offset, char* block, size_t size) override {
    OVERLAPPED place = at_offset(offset);
    DWORD count = 0;
    const BOOL done = ReadFile(file_.get(), block, static_cast<DWORD>(size), &count, &place);
    return result(done ? 0 : GetLastError(), count);
  }

  Transfer write(uint64_t offset, const char* block, size_t size) override {
    OVERLAPPED place = at_offset(offset);
    DWORD count = 0;
    const BOOL done = WriteFile(file_.get(), block, static_cast<DWORD>(size), &count, &place);
    return result(done ? 0 : GetLastError(), count);
  }

 private:
  const OwnedFile file_;
};

/// Written to from where it stands: a file that is appended to keeps what it has.
class HandleStream final : public RawFile {
 public:
  explicit HandleStream(OwnedFile file) noexcept : file_(std::move(file)) {}

  Transfer read(uint64_t, char*, size_t) override { return {0, ERROR_INVALID_FUNCTION}; }

  Transfer write(uint64_t, const char* block, size_t size) override {
    DWORD count = 0;
    const BOOL done = WriteFile(file_.get(), block, static_cast<DWORD>(size), &count, nullptr);
    return result(done ? 0 : GetLastError(), count);
  }

 private:
  const OwnedFile file_;
};

/// A handle of our own to what the process was started with; none if that is nothing.
OwnedFile inherited_stream(StandardStream stream) {
  const HANDLE inherited =
      GetStdHandle(stream == StandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
  if (inherited == nullptr || inherited == INVALID_HANDLE_VALUE) return OwnedFile();
  HANDLE own = INVALID_HANDLE_VALUE;
  const HANDLE process = GetCurrentProcess();
  if (!DuplicateHandle(process, inherited, process, &own, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
    return OwnedFile();
  }
  return OwnedFile(own);
}

/// The console of the process that has started this one; none if that has none.
OwnedFile console_stream() {
  // It fails where a console is attached already, which is as good.
  AttachConsole(ATTACH_PARENT_PROCESS);
  return open("CONOUT$", FileAccess::write, OPEN_EXISTING, FILE_SHARE_READ | FILE_SHARE_WRITE, 0);
}

/// Asked of the system, as in some code pages a character's second byte is that of a backslash.
String folder_of(const String& file_name) {
  // More than any path that a file can be opened by; not every system bears to be asked for less.
  char path[1024] = "";
  char* name = nullptr;
  // For the failures that come without a code.
  SetLastError(ERROR_INVALID_NAME);
  const DWORD length = GetFullPathNameA(file_name.c_str(), sizeof path, path, &name);
  if (length == 0) throw LWE();
  if (length >= sizeof path) throw LWE(ERROR_FILENAME_EXCED_RANGE);
  if (name != nullptr) *name = '\0';
  return path;
}

class OverlappedHandleFile final : public OverlappedRawFile {
 public:
  explicit OverlappedHandleFile(OwnedFile file) noexcept : file_(std::move(file)) {}
  ~OverlappedHandleFile() override { cancel(); }

  uint32_t start_read(uint64_t offset, char* block, size_t size) override {
    begin(offset);
    return started(ReadFileEx(file_.get(), block, static_cast<DWORD>(size), &request_, &completed));
  }

  uint32_t start_write(uint64_t offset, const char* block, size_t size) override {
    begin(offset);
    return started(
        WriteFileEx(file_.get(), block, static_cast<DWORD>(size), &request_, &completed));
  }

  Transfer wait() override {
    wait_for_completion();
    return std::exchange(done_, {});
  }

  void cancel() noexcept override {
    if (pending_) CancelIo(file_.get());
    wait_for_completion();
    done_ = {};
  }

 private:
  void begin(uint64_t offset) noexcept {
    request_ = at_offset(offset);
    // The system leaves this member to those who have a completion routine.
    request_.hEvent = this;
    done_ = {};
    pending_ = true;
  }

  uint32_t started(BOOL success) noexcept {
    if (success) return 0;
    const DWORD error = GetLastError();
    pending_ = false;
    if (error != ERROR_HANDLE_EOF) return error;
    // An end that is known at the start: wait() finds it as the result.
    return 0;
  }

  /// Only the completion routine ends this, so that a wake-up meant for someone else isn't taken.
  void wait_for_completion() noexcept {
    while (pending_)
      SleepEx(INFINITE, TRUE);
  }

  static void CALLBACK completed(DWORD error, DWORD count, OVERLAPPED* request) noexcept {
    auto& file = *static_cast<OverlappedHandleFile*>(request->hEvent);
    file.done_ = result(error, count);
    file.pending_ = false;
  }

  const OwnedFile file_;
  OVERLAPPED request_ = {};
  Transfer done_;
  bool pending_ = false;
};

}  // namespace

std::unique_ptr<RawFile> open_raw_file(const char* file_name, FileAccess access,
                                       uint32_t disposition, uint32_t share_mode, uint32_t flags) {
  OwnedFile file = open(file_name, access, disposition, share_mode, flags);
  if (!file) return nullptr;
  // A device or a pipe has no offsets, and a read of it may wait for ever.
  if (GetFileType(file.get()) != FILE_TYPE_DISK)
    return std::make_unique<HandleStream>(std::move(file));
  return std::make_unique<HandleFile>(std::move(file));
}

std::unique_ptr<OverlappedRawFile> open_overlapped_raw_file(const char* file_name,
                                                            FileAccess access, uint32_t disposition,
                                                            uint32_t share_mode, uint32_t flags) {
  OwnedFile file = open(file_name, access, disposition, share_mode, flags | FILE_FLAG_OVERLAPPED);
  if (!file) return nullptr;
  return std::make_unique<OverlappedHandleFile>(std::move(file));
}

std::unique_ptr<RawFile> open_standard_stream(StandardStream stream) {
  OwnedFile file = inherited_stream(stream);
  if (!file) file = console_stream();
  if (!file) return nullptr;
  return std::make_unique<HandleStream>(std::move(file));
}

uint32_t rename_file(const char* old_name, const char* new_name) noexcept {
  const DWORD attributes = GetFileAttributesA(new_name);
  // Not every system refuses it by itself.
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    return ERROR_ACCESS_DENIED;
  }
  return MoveFileExA(old_name, new_name, MOVEFILE_REPLACE_EXISTING) ? 0 : GetLastError();
}

String create_temporary_file(const String& neighbour) {
  const String folder = folder_of(neighbour);
  // The system's own limit, which not every system looks at before it fills the name's room.
  constexpr size_t kLongestFolder = MAX_PATH - 14;
  if (folder.length() > kLongestFolder) throw LWE(ERROR_FILENAME_EXCED_RANGE);
  char name[MAX_PATH] = "";
  if (GetTempFileNameA(folder.c_str(), "zlv", 0, name) == 0) throw LWE();
  return name;
}

void delete_file(const char* file_name) noexcept {
  DeleteFileA(file_name);
}

void set_last_error(uint32_t code) noexcept {
  SetLastError(code);
}

}  // namespace ORLO
