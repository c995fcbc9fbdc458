#include "view/help.h"

namespace {

constexpr const char* kHelpFile = "zolvane.chm";
constexpr UINT kDisplayContents = 1;

/// Null where there is none. Stays loaded: the viewer's windows live in this process.
HtmlHelpFn find_html_help() {
  const HMODULE viewer = LoadLibraryA("hhctrl.ocx");
  if (viewer == nullptr) return nullptr;
  return reinterpret_cast<HtmlHelpFn>(reinterpret_cast<void*>(GetProcAddress(viewer, "HtmlHelpA")));
}

}  // namespace

void open_help(HWND caller) {
  // Looked up at the first call: a system without a viewer starts the program all the same.
  static const HtmlHelpFn html_help = find_html_help();
  if (html_help != nullptr) open_help(caller, html_help);
}

void open_help(HWND caller, HtmlHelpFn html_help) {
  html_help(caller, kHelpFile, kDisplayContents, 0);
}
