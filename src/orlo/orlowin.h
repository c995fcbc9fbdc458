// The one door to the window system: every header and source that deals with windows comes in here.
#pragma once

#include <windows.h>
// commctrl.h needs what windows.h declares.
#include <commctrl.h>

namespace ORLO {

/// Messages between controllers and their windows. All other windows answer them with 0.
enum PrivateMessage : UINT {
  /// Who are you? A controlled window answers with one of the identities below.
  kMsgIdentity = 49024,
  /// lParam: a RECT that receives the client space of a resizing dialog.
  kMsgClientSpace = 49027,
  /// wParam: the command, lParam: its code.
  kMsgCommand = 49032,
  /// Low word of wParam: the frame command.
  kMsgFrame = 49033,
  /// lParam: the MSG of a key. Non-zero claims it.
  kMsgTranslate = 49034,
  /// WM_DRAWITEM or WM_MEASUREITEM handed back to the control: wParam tells which, lParam is its.
  kMsgOwnerDraw = 49046,
  /// WM_CTLCOLOR... handed back to the control: wParam is the device context; the result a brush.
  kMsgCtlColor = 49047,
};

inline constexpr LRESULT kPlainIdentity = 0x53C10000;
/// What a dialog's identity has beyond a plain window's.
inline constexpr LRESULT kDialogBit = 8;
inline constexpr LRESULT kDialogIdentity = kPlainIdentity | kDialogBit;
inline constexpr LRESULT kSubclassIdentity = 0x53C10020;

inline int width(const RECT& rect) noexcept {
  return rect.right - rect.left;
}
inline int height(const RECT& rect) noexcept {
  return rect.bottom - rect.top;
}

}  // namespace ORLO
