#pragma once

#include "orlo/rstring.h"
#include "orlo/window_handles.h"

namespace ORLO {

/// Moves a window that overlaps the screen's edges back onto it; one that is larger than the
/// screen keeps its upper left corner in view.
void move_to_screen(HWND window);
/// Centres a window over its owner, or else over the window of its thread that lies next below it,
/// or else in the work area. Hidden and minimised windows don't count.
void center_window(HWND window);
/// Makes a window that is wider or higher than the work area as wide or high as that.
void shrink_to_work_area(HWND window);
/// Gives the window another menu and destroys the one it had.
void replace_menu(HWND window, OwnedMenu menu);
/// Ends the boxes and dialogs of a thread that were opened, maybe by way of others, from `base`, or
/// all of them without one: closes them, or answers No where a question can't be closed. Doesn't
/// wait for their end.
void end_windows_above(HWND base, DWORD thread) noexcept;
/// Keeps a control from drawing itself, which then is drawn as a whole.
class FrozenDrawing {
 public:
  explicit FrozenDrawing(HWND control) : control_(control) {
    SendMessageA(control_, WM_SETREDRAW, FALSE, 0);
  }
  ~FrozenDrawing() {
    SendMessageA(control_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(control_, nullptr, TRUE);
  }
  FrozenDrawing(const FrozenDrawing&) = delete;
  FrozenDrawing& operator=(const FrozenDrawing&) = delete;

 private:
  const HWND control_;
};

/// The text of a window of this process.
String window_text(HWND window);

}  // namespace ORLO
