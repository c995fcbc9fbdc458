// How a file is opened, in the platform's own numbers.
#pragma once

#include <cstdint>

namespace ORLO {

/// Dispositions: what becomes of a file that is there, or isn't.
inline constexpr uint32_t kCreateNew = 1;
inline constexpr uint32_t kCreateAlways = 2;
inline constexpr uint32_t kOpenExisting = 3;
inline constexpr uint32_t kOpenAlways = 4;
inline constexpr uint32_t kTruncateExisting = 5;

/// Share modes: what others may do with the file meanwhile.
inline constexpr uint32_t kShareRead = 1;
inline constexpr uint32_t kShareReadWrite = 3;

/// Flag: the file will be read from its beginning to its end.
inline constexpr uint32_t kSequentialScan = 0x08000000;

/// Encodings of a file's text. Any value but the first means 16 bits to a character.
inline constexpr int kText8Bit = 2;
inline constexpr int kText16Bit = 6;
inline constexpr int kText16BitSwapped = 7;

/// Code of the ORLOException for a read beyond the end of a file.
inline constexpr uint32_t kErrorReadBeyondEnd = 0x42FF0005;

}  // namespace ORLO
