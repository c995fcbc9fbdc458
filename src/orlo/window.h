// Windows whose logic is a controller.
#pragma once

#include <functional>
#include <memory>

#include "orlo/controller.h"

namespace ORLO {

class Window {
 public:
  enum class Kind { control, double_click_control, top_level };

  struct Setup {
    Kind kind = Kind::top_level;
    const char* title = "";
    DWORD style = WS_OVERLAPPEDWINDOW;
    RECT place = {CW_USEDEFAULT, CW_USEDEFAULT, 0, 0};
    HWND parent = nullptr;
    int control_id = 0;
  };
  using Factory = std::function<std::unique_ptr<Controller>(HWND)>;

  /// Makes a window and asks the factory for its controller, which the window then owns. Null if
  /// the factory gave nothing or failed, which has been reported; throws LWE if there could be no
  /// window.
  static HWND create(const Setup& setup, const Factory& factory);

 private:
  struct Start;
  static ATOM class_of(Kind kind);
  static LRESULT CALLBACK window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  static LRESULT start(HWND window, Start& start);
};

}  // namespace ORLO
