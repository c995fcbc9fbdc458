// What a check for updates is set to, and what it stands on.
#pragma once

#include <functional>

#include "orlo/clock.h"
#include "platform/internet.h"
#include "platform/own_key.h"
#include "platform/shell.h"
#include "platform/temporary_files.h"

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
