#include "orlo/flat_button.h"

#include "orlo/dpi.h"
#include "orlo/module_functions.h"
#include "orlo/window_helpers.h"

namespace ORLO {
namespace {

// Pixels of a screen of 96 dots per inch.
constexpr int kFocusInset = 3;

bool foreground_is_ours() {
  DWORD process = 0;
  GetWindowThreadProcessId(GetForegroundWindow(), &process);
  return process == GetCurrentProcessId();
}

/// Without the function the active state ends with the next mouse message only.
void ask_for_mouse_leave(HWND window) {
  using Track = BOOL(WINAPI*)(TRACKMOUSEEVENT*);
  const auto track =
      reinterpret_cast<Track>(system_functions().find("COMCTL32", "_TrackMouseEvent"));
  if (track == nullptr) return;
  TRACKMOUSEEVENT request = {};
  request.cbSize = sizeof request;
  request.dwFlags = TME_LEAVE;
  request.hwndTrack = window;
  track(&request);
}

POINT point_of(LPARAM position) {
  return {static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
}

bool in_client_area(HWND window, POINT point) {
  RECT client = {};
  GetClientRect(window, &client);
  return PtInRect(&client, point) != FALSE;
}

/// Restores the text colour and background mode of a device context.
class TextMode {
 public:
  explicit TextMode(HDC context)
      : context_(context), mode_(SetBkMode(context, TRANSPARENT)), color_(GetTextColor(context)) {}
  ~TextMode() {
    SetTextColor(context_, color_);
    SetBkMode(context_, mode_);
  }
  TextMode(const TextMode&) = delete;
  TextMode& operator=(const TextMode&) = delete;

 private:
  const HDC context_;
  const int mode_;
  const COLORREF color_;
};

}  // namespace

FlatButtonController::FlatButtonController(HWND button, COLORREF rest_color, COLORREF active_color)
    : SubclassController(button), rest_color_(rest_color), active_color_(active_color) {}

LRESULT FlatButtonController::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case kMsgOwnerDraw:
      if (wparam != WM_DRAWITEM) return 0;
      draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
      return 1;
    case WM_MOUSEMOVE:
      set_active(is_hot_at(lparam));
      break;
    case WM_LBUTTONUP:
      if (!in_client_area(_hwnd, point_of(lparam))) set_active(false);
      break;
    case WM_MOUSELEAVE:
    case WM_CANCELMODE:
      set_active(false);
      break;
    case WM_GETDLGCODE:
      // An owner-drawn button doesn't tell by itself that it can be the default one.
      return DLGC_BUTTON | (default_button ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
    case BM_SETSTYLE:
      // The dialog manager marks the default button by its style; the type must stay owner-drawn.
      set_default((wparam & BS_TYPEMASK) == BS_DEFPUSHBUTTON);
      return 0;
    default:
      break;
  }
  return SubclassController::WndProc(message, wparam, lparam);
}

bool FlatButtonController::is_hot_at(LPARAM position) const {
  return in_client_area(_hwnd, point_of(position)) && IsWindowEnabled(_hwnd) &&
         foreground_is_ours();
}

void FlatButtonController::set_active(bool on) {
  if (active == on) return;
  active = on;
  InvalidateRect(_hwnd, nullptr, FALSE);
  if (on) ask_for_mouse_leave(_hwnd);
}

void FlatButtonController::set_default(bool on) {
  if (default_button == on) return;
  default_button = on;
  InvalidateRect(_hwnd, nullptr, FALSE);
}

void FlatButtonController::draw(const DRAWITEMSTRUCT& item) const {
  RECT rect = item.rcItem;
  FillRect(item.hDC, &rect, GetSysColorBrush(COLOR_BTNFACE));
  if (active) {
    DrawEdge(item.hDC, &rect, EDGE_ETCHED, BF_RECT);
  } else if (default_button) {
    DrawEdge(item.hDC, &rect, EDGE_RAISED, BF_RECT | BF_FLAT);
  }
  draw_text(item);
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
    RECT focus = item.rcItem;
    const int inset = scale_up(kFocusInset, screen_dpi());
    InflateRect(&focus, -inset, -inset);
    DrawFocusRect(item.hDC, &focus);
  }
}

void FlatButtonController::draw_text(const DRAWITEMSTRUCT& item) const {
  const String text = window_text(_hwnd);
  const auto length = static_cast<int>(text.length());
  UINT format = DT_CENTER | DT_VCENTER | DT_SINGLELINE;
  if ((item.itemState & ODS_NOACCEL) != 0) format |= DT_HIDEPREFIX;
  RECT rect = item.rcItem;
  if ((item.itemState & ODS_SELECTED) != 0) OffsetRect(&rect, 1, 1);

  const TextMode mode(item.hDC);
  if ((item.itemState & ODS_DISABLED) == 0) {
    SetTextColor(item.hDC, active ? active_color_ : rest_color_);
    DrawTextA(item.hDC, text.c_str(), length, &rect, format);
    return;
  }
  RECT shadow = rect;
  OffsetRect(&shadow, 1, 1);
  SetTextColor(item.hDC, GetSysColor(COLOR_BTNHIGHLIGHT));
  DrawTextA(item.hDC, text.c_str(), length, &shadow, format);
  SetTextColor(item.hDC, GetSysColor(COLOR_GRAYTEXT));
  DrawTextA(item.hDC, text.c_str(), length, &rect, format);
}

}  // namespace ORLO
