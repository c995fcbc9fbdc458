// What a check for updates is set to, and what it stands on.
#pragma once

#include <functional>

#include "orlo/clock.h"
#include "platform/internet.h"
#include "platform/own_key.h"
#include "platform/shell.h"
#include "platform/temporary_files.h"

/// Of one program and one run.
struct UpdateSettings {
  String appName;         ///< short name of the program
  String registryPath;    ///< a key below HKEY_CURRENT_USER
  String descriptionUrl;  ///< where the description of the newest version is
  String currentVersion;
  String agent;     ///< the program and its version, as servers are told
  String systemId;  ///< as "WIN6.1.7601"
  bool limitToDaily = true;
};

/// All must outlive the check; `internet` and `key` belong to its thread.
struct UpdateServices {
  Internet& internet;
  OwnKey& key;
  TemporaryFiles& files;
  Shell& shell;
  const ORLO::Clock& clock;
  std::function<String(unsigned id)> text;  ///< a text of the string table
};

/// What the process gives to both checks, the one in the background and the one on demand. All must
/// outlive their threads.
struct UpdateSystem {
  Internet& background_internet;
  Internet& manual_internet;
  OwnKey& key;
  TemporaryFiles& files;
  const char* description_url;
  /// Ends the process at once, without a word to anybody in it. Returns in tests only.
  std::function<void()> end_process;
};
