// Text that the system keeps: string tables, windows, COM strings, the clipboard.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/owned_handle.h"
#include "orlo/rstring.h"
// This needs what orlowin.h brings.
#include <oleauto.h>

namespace ORLO {

struct BstrTraits {
  using Handle = BSTR;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle text) noexcept { SysFreeString(text); }
};
using OwnedBstr = OwnedHandle<BstrTraits>;

/// The string of a module's string table, at most 1,023 characters of it; empty if there is none.
/// Returns its length.
size_t load_string(String& text, HINSTANCE module, UINT id);

/// As String::formatted, with the format text from a string table.
template <typename... Args>
String formatted_string(HINSTANCE module, UINT id, const Args&... args) {
  String format;
  load_string(format, module, id);
  return String::formatted(format.c_str(), args...);
}

/// A window's text, at most 1,023 characters of it. Where the window tells a length but no text,
/// that many NULs. Returns the length.
size_t get_window_text(String& text, HWND window);

/// A COM string, NULs included. Null if there is no memory for it.
OwnedBstr to_bstr(const String& text);
/// As many bytes as the COM string has units; NULs from its first NUL on. Null is the empty String.
String from_bstr(BSTR text);

/// Replaces the clipboard's content in the window's name; false if that fails.
bool copy_to_clipboard(const String& text, HWND window);

}  // namespace ORLO
