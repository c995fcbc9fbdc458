// The program's own version.
#pragma once

#include "version_settings.h"

/// As the publisher writes it; the version resource has it as four numbers.
inline constexpr char kProgramVersion[] = ZOLVANE_VERSION;
