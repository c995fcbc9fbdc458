// What a run was started with, and what the configuration adds.
#pragma once

#include <cstdint>

#include "orlo/rstring.h"

/// Primary language ids; any other value means English.
inline constexpr uint16_t kLangGerman = 7;
inline constexpr uint16_t kLangEnglish = 9;

/// A plain record; copies are independent.
struct UninstallPara {
  String searchText;
  bool noPersist = false;       ///< no file is read or written
  bool noUpdate = false;        ///< the update check never starts
  bool colorBackground = true;  ///< rows are coloured
  String windowPos;             ///< "left/top/right/bottom - show command", or empty
  uint16_t langId = kLangEnglish;
  String cfgPath;
  String histPath;
  String imageListPath;
  String imagePathsPath;
};
