#include "platform/language.h"

#include <windows.h>

#include "platform/system_version.h"

namespace {

using SetThreadUILanguageFn = LANGID(WINAPI*)(LANGID);
using IsWow64ProcessFn = BOOL(WINAPI*)(HANDLE, PBOOL);

// Written before any other thread exists, and only read afterwards.
uint32_t uiLcid = 0x809;

template <typename Function>
Function kernel_function(const char* name) {
  const HMODULE kernel = GetModuleHandleA("kernel32");
  if (kernel == nullptr) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(kernel, name)));
}

SetThreadUILanguageFn find_set_thread_ui_language() {
  // Before version 6 the function exists but means something else.
  return system_version().at_least_nt6()
             ? kernel_function<SetThreadUILanguageFn>("SetThreadUILanguage")
             : nullptr;
}

}  // namespace

void set_ui_locale(uint32_t lcid) noexcept {
  uiLcid = lcid;
}
uint32_t ui_locale_id() noexcept {
  return uiLcid;
}

void applyThreadLanguage() {
  static const SetThreadUILanguageFn setThreadUILanguageFn = find_set_thread_ui_language();
  if (setThreadUILanguageFn != nullptr) {
    setThreadUILanguageFn(LOWORD(uiLcid));
  } else {
    SetThreadLocale(uiLcid);
  }
}

uint16_t thread_language() noexcept {
  return static_cast<uint16_t>(GetThreadLocale() & 0x3ff);
}

bool under_wow64() noexcept {
  static const auto isWow64ProcessFn = kernel_function<IsWow64ProcessFn>("IsWow64Process");
  BOOL wow64 = FALSE;
  return isWow64ProcessFn != nullptr && isWow64ProcessFn(GetCurrentProcess(), &wow64) != FALSE &&
         wow64 != FALSE;
}
