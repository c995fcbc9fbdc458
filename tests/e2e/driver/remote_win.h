// Memory in another process, for messages that carry pointers the system doesn't carry across.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <string>

namespace driver {

struct CloseHandleOf {
  void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
/// Owns a kernel handle whose failure value is null.
using KernelHandle = std::unique_ptr<void, CloseHandleOf>;

/// Opens the process that owns a window, with the rights that RemoteBlock and threads need. Throws
/// Refusal.
KernelHandle open_process_of(HWND window);

class RemoteBlock {
 public:
  /// `process` has to outlive the block.
  RemoteBlock(HANDLE process, size_t size);
  /// Takes over a block that was allocated there.
  RemoteBlock(HANDLE process, char* address) : process_(process), address_(address) {}
  ~RemoteBlock();
  RemoteBlock(const RemoteBlock&) = delete;
  RemoteBlock& operator=(const RemoteBlock&) = delete;

  char* address() const { return address_; }
  void write(const void* data, size_t size, size_t offset = 0) const;
  void read(void* data, size_t size, size_t offset = 0) const;
  /// Text from `offset` to its NUL, at most `limit` bytes.
  std::string read_text(size_t offset, size_t limit) const;

 private:
  HANDLE process_;
  char* address_;
};

/// SendMessageTimeoutA with a limit that only a hung window meets; throws Refusal then.
LRESULT send_limited(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

template <typename T>
LPARAM as_lparam(T* pointer) {
  return reinterpret_cast<LPARAM>(pointer);
}

}  // namespace driver
