#include "view/clipboard.h"

#include <cstring>

#include "orlo/owned_handle.h"

namespace {

struct GlobalTraits {
  using Handle = HGLOBAL;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle handle) noexcept { GlobalFree(handle); }
};
using OwnedGlobal = ORLO::OwnedHandle<GlobalTraits>;

class OpenedClipboard {
 public:
  explicit OpenedClipboard(HWND owner) : opened_(OpenClipboard(owner) != FALSE) {}
  ~OpenedClipboard() {
    if (opened_) CloseClipboard();
  }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;

  explicit operator bool() const noexcept { return opened_; }

 private:
  const bool opened_;
};

OwnedGlobal movable_copy(const String& text) {
  const size_t size = text.length() + 1;
  OwnedGlobal block(GlobalAlloc(GMEM_MOVEABLE, size));
  void* const data = block ? GlobalLock(block.get()) : nullptr;
  if (data == nullptr) return OwnedGlobal();
  std::memcpy(data, text.c_str(), size);
  GlobalUnlock(block.get());
  return block;
}

}  // namespace

bool copy_to_clipboard(HWND owner, const String& text) {
  if (text.empty()) return false;
  OwnedGlobal block = movable_copy(text);
  const OpenedClipboard clipboard(owner);
  if (!block || !clipboard || EmptyClipboard() == FALSE) return false;
  if (SetClipboardData(CF_TEXT, block.get()) == nullptr) return false;
  // It belongs to the clipboard now.
  static_cast<void>(block.release());
  return true;
}
