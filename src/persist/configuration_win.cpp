#include "persist/configuration.h"

#include <windows.h>

#include <cstring>

#include "orlo/scan.h"

namespace {

constexpr const char* kWindowPos = "ZOLVANE_WINDOW_POS";
constexpr const char* kLangId = "ZOLVANE_LANG_ID";
constexpr const char* kColorBackground = "ZOLVANE_COLOR_BKGND";
constexpr const char* kTrue = "true";

/// An empty text takes the setting away.
void write(const char* name, const char* text) {
  SetEnvironmentVariableA(name, *text != '\0' ? text : nullptr);
}

/// Empty if there is no such setting, or none of a sensible length.
String read(const char* name) {
  char text[200] = {};
  const DWORD length = GetEnvironmentVariableA(name, text, sizeof text);
  return length < sizeof text ? String(text, text + length) : String();
}

}  // namespace

void writeConfiguration(const UninstallPara& para) {
  write(kWindowPos, para.windowPos.c_str());
  write(kLangId, String::formatted("%d", int{para.langId}).c_str());
  write(kColorBackground, para.colorBackground ? kTrue : "false");
}

bool readConfiguration(UninstallPara& para) {
  const String language = read(kLangId);
  if (language.empty()) return false;
  int langId = 0;
  ORLO::scan(language.c_str(), "%d", {langId});
  para.windowPos = read(kWindowPos);
  para.langId = static_cast<uint16_t>(langId);
  para.colorBackground = std::strcmp(read(kColorBackground).c_str(), kTrue) == 0;
  return true;
}
