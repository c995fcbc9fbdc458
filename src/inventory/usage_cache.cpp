#include "inventory/usage_cache.h"

#include <bit>
#include <cstring>

#include "orlo/datetime.h"

namespace {

constexpr size_t kHasNameOffset = 4;
constexpr size_t kSizeOffset = 8;
constexpr size_t kLastUsedOffset = 16;
constexpr size_t kFrequencyOffset = 24;
constexpr size_t kNameOffset = 28;
constexpr size_t kNameUnits = (kUsageRecordSize - kNameOffset) / 2;
constexpr uint32_t kUnknownFrequency = 0xFFFFFFFF;

static_assert(std::endian::native == std::endian::little);

template <typename T>
T field(const void* data, size_t offset) {
  T value;
  std::memcpy(&value, static_cast<const char*>(data) + offset, sizeof value);
  return value;
}

/// Rounded to KB in signed 64-bit arithmetic that wraps; the low 32 bits.
int32_t size_in_kb(int64_t bytes) {
  const auto rounded = static_cast<int64_t>(static_cast<uint64_t>(bytes) + 512U);
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(rounded / 1024)));
}

String main_file(const void* data) {
  // One unit more, for the terminator that the record may lack.
  char16_t name[kNameUnits + 1] = {};
  std::memcpy(name, static_cast<const char*>(data) + kNameOffset, kNameUnits * sizeof(char16_t));
  return String(name);
}

String last_use_text(ORLO::FileTime time, const ORLO::Clock& clock) {
  ORLO::SystemTime utc;
  if (!ORLO::to_system_time(time, utc) || utc.wMonth == 0) return String();
  ORLO::SystemTime local = utc;
  clock.to_local(nullptr, utc, local);
  return String::formatted("%02d.%02d.%04d %02d:%02d:%02d", local.wDay, local.wMonth, local.wYear,
                           local.wHour, local.wMinute, local.wSecond);
}

}  // namespace

std::optional<UsageRecord> decode_usage_record(const void* data, size_t size,
                                               const ORLO::Clock& clock) {
  if (size != kUsageRecordSize || field<uint32_t>(data, 0) != kUsageRecordSize) return {};
  UsageRecord record;
  const auto installed = field<int64_t>(data, kSizeOffset);
  if (installed != -1) record.size_kb = size_in_kb(installed);
  if (field<uint32_t>(data, kHasNameOffset) != 0) record.main_file = main_file(data);
  const auto last_used = field<uint64_t>(data, kLastUsedOffset);
  if ((last_used >> 32) != 0) record.last_use = last_use_text(last_used, clock);
  const auto frequency = field<uint32_t>(data, kFrequencyOffset);
  if (frequency != kUnknownFrequency) record.frequency = static_cast<int32_t>(frequency);
  return record;
}
