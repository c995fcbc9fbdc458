// The change of language: the program starts itself anew in the other one and ends.
#pragma once

#include "persist/uninstall_para.h"

/// What the change does to the program around it; see WindowRestart for the real thing.
class ProgramRestart {
 public:
  virtual ~ProgramRestart() = default;

  virtual String program_path() = 0;
  /// Puts the window's place into `windowPos`, unless it is minimised.
  virtual void keep_place(String& windowPos) = 0;
  virtual void write_configuration(const UninstallPara& para) = 0;
  virtual void show_window(bool shown) = 0;
  /// As WinExec: a result below 32 means that nothing has started.
  virtual unsigned start(const String& command_line) = 0;
  /// Lets the message loop end, wherever it stands.
  virtual void quit() = 0;
};

/// `other_switch`: the switch that starts the program in the other language. If no program starts,
/// this one goes on as it is; `para` and the configuration name the other language all the same.
void switchLanguage(const String& other_switch, UninstallPara& para, ProgramRestart& restart);

/// The program in quotes if its path holds a blank, and the switch.
String restart_command(const String& program_path, const String& other_switch);
