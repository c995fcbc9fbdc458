#include "orlo/hyperlink.h"

#include "orlo/window_helpers.h"
// These need what orlowin.h brings.
#include <shellapi.h>

namespace ORLO {
namespace {

/// What ShellExecute answers up to this is an error.
constexpr INT_PTR kLastShellError = 32;

String target_of(HWND link) {
  if (link == nullptr) return String();
  char text[1024];
  const auto id = static_cast<UINT>(GetDlgCtrlID(link));
  const int length = LoadStringA(GetModuleHandleA(nullptr), id, text, sizeof text);
  return length > 0 ? String(text) : window_text(link);
}

/// What lies under the link shows through it, so that has to be drawn anew too.
void redraw(HWND link) {
  RECT place = {};
  GetWindowRect(link, &place);
  const HWND parent = GetParent(link);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
  InvalidateRect(parent, &place, TRUE);
  InvalidateRect(link, nullptr, TRUE);
}

}  // namespace

bool open_with_shell(HWND owner, const String& target) {
  const HINSTANCE result =
      ShellExecuteA(owner, "open", target.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > kLastShellError;
}

HyperlinkController::HyperlinkController(HWND link, COLORREF color, COLORREF visited_color,
                                         Open open)
    : SubclassController(link),
      url_(target_of(link)),
      color_(color),
      visited_color_(visited_color),
      open_(open) {}

HyperlinkController::~HyperlinkController() {
  if (!font_ || attached_controller(_hwnd, GWLP_USERDATA) != this) return;
  forward(WM_SETFONT, reinterpret_cast<WPARAM>(plain_font_), FALSE);
}

LRESULT HyperlinkController::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_LBUTTONDOWN:
      follow();
      return 0;
    case WM_NCHITTEST:
      // A static text would let the mouse through.
      return HTCLIENT;
    case WM_SETCURSOR:
      if (!keep_thread_cursor(lparam)) SetCursor(LoadCursorA(nullptr, IDC_HAND));
      return 1;
    case kMsgCtlColor:
      return prepare(reinterpret_cast<HDC>(wparam));
    case WM_SETFONT:
      forward(message, wparam, lparam);
      font_.reset();
      return 0;
    default:
      return SubclassController::WndProc(message, wparam, lparam);
  }
}

void HyperlinkController::follow() {
  // The shell may dispatch messages while it opens, and one of them may end the dialog.
  const HWND link = _hwnd;
  const String target = url_;
  if (!target.empty() && !open_(GetParent(link), target)) MessageBeep(0);
  if (attached_controller(link, GWLP_USERDATA) != this) return;
  visited_ = true;
  redraw(link);
}

HFONT HyperlinkController::underlined_font() {
  if (font_) return font_.get();
  plain_font_ = reinterpret_cast<HFONT>(forward(WM_GETFONT, 0, 0));
  LOGFONTA shape = {};
  GetObjectA(plain_font_ != nullptr ? plain_font_ : GetStockObject(SYSTEM_FONT), sizeof shape,
             &shape);
  shape.lfUnderline = TRUE;
  font_.reset(CreateFontIndirectA(&shape));
  // Some systems select the control's own font only behind the request for its colours.
  forward(WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
  return font_.get();
}

LRESULT HyperlinkController::prepare(HDC context) {
  SelectObject(context, underlined_font());
  SetTextColor(context, visited_ ? visited_color_ : color_);
  SetBkMode(context, TRANSPARENT);
  return reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH));
}

}  // namespace ORLO
