// Owners of the window system's handles.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/owned_handle.h"

namespace ORLO {

template <typename HandleType, auto close_function>
struct NullableHandleTraits {
  using Handle = HandleType;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle handle) noexcept { close_function(handle); }
};

using OwnedFont = OwnedHandle<NullableHandleTraits<HFONT, &DeleteObject>>;
using OwnedBitmap = OwnedHandle<NullableHandleTraits<HBITMAP, &DeleteObject>>;
using OwnedBrush = OwnedHandle<NullableHandleTraits<HBRUSH, &DeleteObject>>;
using OwnedIcon = OwnedHandle<NullableHandleTraits<HICON, &DestroyIcon>>;
/// For a menu that no window shows; a window destroys the menu that was set into it.
using OwnedMenu = OwnedHandle<NullableHandleTraits<HMENU, &DestroyMenu>>;
using OwnedAccelerators = OwnedHandle<NullableHandleTraits<HACCEL, &DestroyAcceleratorTable>>;
using OwnedHook = OwnedHandle<NullableHandleTraits<HHOOK, &UnhookWindowsHookEx>>;

}  // namespace ORLO
