// The program behind its main window, as a change of language restarts it.
#pragma once

#include "orlo/orlowin.h"
#include "view/language_switch.h"

class WindowRestart : public ProgramRestart {
 public:
  explicit WindowRestart(HWND main_window) : window_(main_window) {}

  String program_path() override;
  void keep_place(String& windowPos) override;
  void write_configuration(const UninstallPara& para) override;
  void show_window(bool shown) override;
  unsigned start(const String& command_line) override;
  void quit() override;

 private:
  HWND window_;
};

/// Puts the place of a window that is not minimised into `windowPos`, if it differs.
void keep_window_place(HWND window, String& windowPos);
