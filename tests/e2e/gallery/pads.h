// Controls whose whole logic is a controller.
#pragma once

#include "log.h"
#include "orlo/controller.h"

namespace gallery {

inline constexpr COLORREF kPadColor = RGB(40, 160, 90);
inline constexpr COLORREF kPressedPadColor = RGB(200, 120, 20);
inline constexpr unsigned kPadCommand = 70001;
inline constexpr unsigned kPadFrame = 66;

/// Logs the mouse, changes its colour with each press, sends its parent a command on a right click
/// and a frame message on a middle one.
class Pad : public ORLO::Controller {
 public:
  Pad(HWND window, const char* name, const Log& log) : Controller(window), name_(name), log_(log) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;
  void Paint() override;

 private:
  const char* const name_;
  const Log& log_;
  bool pressed_ = false;
};

/// Fails to paint once it is told to.
class BadPad : public ORLO::Controller {
 public:
  BadPad(HWND window, const Log& log) : Controller(window), log_(log) {}
  void Paint() override;
  void turn_bad();

 private:
  const Log& log_;
  bool bad_ = false;
};

}  // namespace gallery
