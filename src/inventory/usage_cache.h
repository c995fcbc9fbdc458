// The binary record in which the system's control panel keeps what it knows of a program's use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "orlo/clock.h"
#include "orlo/rstring.h"

/// What the record says; an absent part is one that the record marks as unknown.
struct UsageRecord {
  std::optional<int32_t> size_kb;
  std::optional<String> main_file;
  std::optional<String> last_use;  ///< "dd.mm.yyyy hh:mm:ss", local; empty for a time out of range
  std::optional<int32_t> frequency;
};

inline constexpr uint32_t kUsageRecordSize = 552;

/// Layout, little-endian: u32 size of the record (552), u32 has-name, i64 installed size in bytes
/// (-1 unknown), u64 last use as file time (high half 0: none), u32 number of uses (0xFFFFFFFF
/// unknown), 262 UTF-16 units of the main file's path. None if `size` or the first field is off.
std::optional<UsageRecord> decode_usage_record(const void* data, size_t size,
                                               const ORLO::Clock& clock);
