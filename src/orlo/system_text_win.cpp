#include "orlo/system_text.h"

#include <cstring>
#include <string>

#include "orlo/locale.h"

namespace ORLO {
namespace {

constexpr int kRoom = 1024;
constexpr size_t kLargestInBuffer = kRoom - 1;

struct GlobalTraits {
  using Handle = HGLOBAL;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle memory) noexcept { GlobalFree(memory); }
};
using OwnedGlobal = OwnedHandle<GlobalTraits>;

/// Empty if there is no memory.
OwnedGlobal global_copy(const String& text) {
  const size_t size = text.length() + 1;
  OwnedGlobal memory(GlobalAlloc(GMEM_MOVEABLE, size));
  void* const bytes = memory ? GlobalLock(memory.get()) : nullptr;
  if (bytes == nullptr) return OwnedGlobal();
  std::memcpy(bytes, text.c_str(), size);
  GlobalUnlock(memory.get());
  return memory;
}

/// For a text that the window was silent about at first.
size_t read_longer_text(String& text, HWND window, size_t told) {
  text.resize(2 * told);
  const int room = static_cast<int>(text.length());
  text.resize(static_cast<size_t>(GetWindowTextA(window, text.writable(), room)));
  return text.length();
}

}  // namespace

size_t load_string(String& text, HINSTANCE module, UINT id) {
  char buffer[kRoom];
  const int length = LoadStringA(module, id, buffer, kRoom);
  text.assign(buffer, length > 0 ? static_cast<size_t>(length) : 0);
  return text.length();
}

size_t get_window_text(String& text, HWND window) {
  char buffer[kRoom] = {};
  int length = GetWindowTextA(window, buffer, kRoom);
  if (length == 0) length = GetWindowTextLengthA(window);
  const size_t told = length > 0 ? static_cast<size_t>(length) : 0;
  if (told > kLargestInBuffer) return read_longer_text(text, window, told);
  text.assign(buffer, told);
  return told;
}

OwnedBstr to_bstr(const String& text) {
  const std::u16string wide = system_locale().widen(text.c_str(), text.length());
  return OwnedBstr(SysAllocStringLen(reinterpret_cast<const wchar_t*>(wide.data()),
                                     static_cast<UINT>(wide.size())));
}

String from_bstr(BSTR text) {
  String result;
  if (text != nullptr) {
    result.assign_wide(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
  }
  return result;
}

bool copy_to_clipboard(const String& text, HWND window) {
  if (!OpenClipboard(window)) return false;
  EmptyClipboard();
  OwnedGlobal memory = global_copy(text);
  // Without memory the clipboard stays open: so the program has always behaved.
  if (!memory) return false;
  const bool taken = SetClipboardData(CF_TEXT, memory.get()) != nullptr;
  if (taken) memory.release();
  CloseClipboard();
  return taken;
}

}  // namespace ORLO
