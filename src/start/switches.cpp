#include "start/switches.h"

#include <cstring>

namespace {

constexpr uint32_t kLocaleGerman = 0x407;
constexpr uint32_t kLocaleEnglish = 0x809;

bool has(const char* command_line, const char* text) {
  return std::strstr(command_line, text) != nullptr;
}

}  // namespace

Switches read_switches(const char* command_line) {
  Switches switches;
  switches.postUpdate = has(command_line, "-postupdate");
  switches.noPersist = has(command_line, "-nopersist");
  switches.noUpdate = has(command_line, "-noupdate");
  switches.german = has(command_line, "-ger");
  switches.english = has(command_line, "-eng");
  return switches;
}

uint32_t ui_locale(uint16_t langId) {
  return langId == kLangGerman ? kLocaleGerman : kLocaleEnglish;
}

uint32_t choose_language(const Switches& switches, UninstallPara& para) {
  if (switches.german) {
    para.langId = kLangGerman;
  } else if (switches.english) {
    para.langId = kLangEnglish;
  }
  return ui_locale(para.langId);
}

void set_paths(const String& folder, UninstallPara& para) {
  para.cfgPath.printf("%s\\Quillmere\\zolvane-cfg.xml", folder);
  para.histPath.printf("%s\\Quillmere\\zolvane-hist.xml", folder);
  para.imageListPath.printf("%s\\Quillmere\\zolvane-imagelist.dat", folder);
  para.imagePathsPath.printf("%s\\Quillmere\\zolvane-imagepaths.txt", folder);
}
