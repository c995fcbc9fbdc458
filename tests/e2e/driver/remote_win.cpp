#include "remote_win.h"

#include "words.h"

namespace driver {
namespace {

constexpr UINT kHungMilliseconds = 20000;

}  // namespace

KernelHandle open_process_of(HWND window) {
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  KernelHandle process(OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE |
                                       PROCESS_CREATE_THREAD | PROCESS_QUERY_INFORMATION |
                                       SYNCHRONIZE,
                                   FALSE, pid));
  if (!process) throw Refusal("the window's process can't be opened");
  return process;
}

RemoteBlock::RemoteBlock(HANDLE process, size_t size)
    : process_(process),
      address_(static_cast<char*>(
          VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {
  if (address_ == nullptr) throw Refusal("no memory in the other process");
}

RemoteBlock::~RemoteBlock() {
  VirtualFreeEx(process_, address_, 0, MEM_RELEASE);
}

void RemoteBlock::write(const void* data, size_t size, size_t offset) const {
  if (!WriteProcessMemory(process_, address_ + offset, data, size, nullptr)) {
    throw Refusal("the other process's memory can't be written");
  }
}

void RemoteBlock::read(void* data, size_t size, size_t offset) const {
  if (!ReadProcessMemory(process_, address_ + offset, data, size, nullptr)) {
    throw Refusal("the other process's memory can't be read");
  }
}

std::string RemoteBlock::read_text(size_t offset, size_t limit) const {
  std::string text(limit, '\0');
  read(text.data(), limit, offset);
  text.resize(std::min(text.find('\0'), limit));
  return text;
}

LRESULT send_limited(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  DWORD_PTR result = 0;
  SetLastError(ERROR_SUCCESS);
  if (!SendMessageTimeoutA(window, message, wparam, lparam, SMTO_NORMAL, kHungMilliseconds,
                           &result)) {
    throw Refusal("the window doesn't answer message " + std::to_string(message) + ", error " +
                  std::to_string(GetLastError()));
  }
  return static_cast<LRESULT>(result);
}

}  // namespace driver
