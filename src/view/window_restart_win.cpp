#include "view/window_restart.h"

#include "persist/configuration.h"
#include "persist/window_pos.h"

void keep_window_place(HWND window, String& windowPos) {
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof placement;
  if (GetWindowPlacement(window, &placement) == FALSE) return;
  const RECT& normal = placement.rcNormalPosition;
  keep_window_pos(
      {normal.left, normal.top, normal.right, normal.bottom, static_cast<int>(placement.showCmd)},
      windowPos);
}

String WindowRestart::program_path() {
  // A longer path is cut, by some systems without a NUL: nothing starts, and the program goes on in
  // its language.
  char path[MAX_PATH + 1] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  return String(path);
}

void WindowRestart::keep_place(String& windowPos) {
  keep_window_place(window_, windowPos);
}

void WindowRestart::write_configuration(const UninstallPara& para) {
  writeConfiguration(para);
}

void WindowRestart::show_window(bool shown) {
  ShowWindow(window_, shown ? SW_SHOW : SW_HIDE);
}

unsigned WindowRestart::start(const String& command_line) {
  return WinExec(command_line.c_str(), SW_SHOWNORMAL);
}

void WindowRestart::quit() {
  PostQuitMessage(0);
}
