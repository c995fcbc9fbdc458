// The program's own version.
#pragma once

/// As the version resource has it, without the numbers at its end that are 0.
inline constexpr char kProgramVersion[] = "5.3";
