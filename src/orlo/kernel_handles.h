// Owners of the kernel's handles. Only for the target.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/owned_handle.h"

namespace ORLO {

/// Threads, events, processes: null is none.
struct KernelTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using OwnedKernelHandle = OwnedHandle<KernelTraits>;

struct FileTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using OwnedFile = OwnedHandle<FileTraits>;

}  // namespace ORLO
