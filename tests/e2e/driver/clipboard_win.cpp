// The clipboard as another program sees it.
#include <windows.h>

#include <cstring>
#include <memory>
#include <string>

#include "command.h"

namespace driver {
namespace {

constexpr int kTries = 100;
constexpr DWORD kPause = 20;

/// The clipboard is somebody's own for as long as it is open, so this asks for a while.
class OpenedClipboard {
 public:
  explicit OpenedClipboard(HWND owner) {
    for (int i = 0; !OpenClipboard(owner); ++i) {
      if (i == kTries) throw Refusal("the clipboard stays in use");
      Sleep(kPause);
    }
  }
  ~OpenedClipboard() { CloseClipboard(); }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;
};

struct FreeGlobalOf {
  void operator()(HGLOBAL block) const noexcept { GlobalFree(block); }
};
using Block = std::unique_ptr<void, FreeGlobalOf>;

/// What is put on the clipboard needs an owner.
HWND own_window() {
  static const HWND window =
      CreateWindowExA(0, "Static", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  return window;
}

/// clipboard-text: the 8-bit text; refused if there is none.
void read_text(const Words&, Json& answer) {
  const OpenedClipboard opened(nullptr);
  const HANDLE block = GetClipboardData(CF_TEXT);
  const auto* const text = static_cast<const char*>(block != nullptr ? GlobalLock(block) : nullptr);
  if (text == nullptr) throw Refusal("no text on the clipboard");
  answer.text(std::string(text, strnlen(text, GlobalSize(block))));
  GlobalUnlock(block);
}

/// clipboard-set TEXT
void set_text(const Words& words, Json& answer) {
  const std::string& text = words.text(1);
  Block block(GlobalAlloc(GMEM_MOVEABLE, text.size() + 1));
  std::memcpy(GlobalLock(block.get()), text.c_str(), text.size() + 1);
  GlobalUnlock(block.get());
  const OpenedClipboard opened(own_window());
  EmptyClipboard();
  if (SetClipboardData(CF_TEXT, block.get()) == nullptr) throw Refusal("the clipboard refuses");
  // It belongs to the system from here on.
  answer.boolean(block.release() != nullptr);
}

/// clipboard-formats: how many there are.
void count_formats(const Words&, Json& answer) {
  answer.number(CountClipboardFormats());
}

constexpr Command kCommands[] = {{"clipboard-text", read_text},
                                 {"clipboard-set", set_text},
                                 {"clipboard-formats", count_formats}};

}  // namespace

std::span<const Command> clipboard_commands() {
  return kCommands;
}

}  // namespace driver
