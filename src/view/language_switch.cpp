#include "view/language_switch.h"

#include <cstring>

namespace {

/// Results of a start from here on mean that the program runs.
constexpr unsigned kStarted = 32;

}  // namespace

String restart_command(const String& program_path, const String& other_switch) {
  const bool has_blank = std::strchr(program_path.c_str(), ' ') != nullptr;
  return String::formatted(has_blank ? "\"%s\" %#s" : "%s %#s", program_path.c_str(), other_switch);
}

void switchLanguage(const String& other_switch, UninstallPara& para, ProgramRestart& restart) {
  const String command_line = restart_command(restart.program_path(), other_switch);
  if (std::strstr(other_switch.c_str(), "-ger") != nullptr) para.langId = kLangGerman;
  if (std::strstr(other_switch.c_str(), "-eng") != nullptr) para.langId = kLangEnglish;
  restart.keep_place(para.windowPos);
  if (!para.noPersist) restart.write_configuration(para);
  restart.show_window(false);
  if (restart.start(command_line) < kStarted) {
    restart.show_window(true);
    return;
  }
  restart.quit();
}
