#include "start/switches.h"

#include <cstring>
#include <string>

namespace {

constexpr uint32_t kLocaleGerman = 0x407;
constexpr uint32_t kLocaleEnglish = 0x809;

bool has(const std::string& command_line, const char* text) {
  return std::strstr(command_line.c_str(), text) != nullptr;
}

/// A word of the command line: its text without quotes, and where it ends.
struct Word {
  std::string text;
  const char* end;
};

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}

const char* skip_blanks(const char* at) {
  while (is_blank(*at))
    ++at;
  return at;
}

/// Blanks between quotes belong to the word. No file's name holds a quote, so none is escaped.
Word read_word(const char* at) {
  Word word;
  bool quoted = false;
  for (; *at != '\0' && (quoted || !is_blank(*at)); ++at) {
    if (*at == '"') {
      quoted = !quoted;
    } else {
      word.text += *at;
    }
  }
  word.end = at;
  return word;
}

/// Takes note of "-export" and its file. The command line without the file.
std::string read_export(const char* command_line, Switches& switches) {
  for (const char* at = skip_blanks(command_line); *at != '\0';) {
    const Word word = read_word(at);
    at = skip_blanks(word.end);
    if (word.text != "-export") continue;
    const Word file = read_word(at);
    switches.doExport = true;
    switches.exportFile = file.text;
    return std::string(command_line, at).append(file.end);
  }
  return command_line;
}

}  // namespace

Switches read_switches(const char* whole_command_line) {
  Switches switches;
  const std::string command_line = read_export(whole_command_line, switches);
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
