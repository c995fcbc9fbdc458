// Any bytes as the system's usage record, short ones included.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "inventory/usage_cache.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

void check(const void* data, size_t size) {
  const auto record = decode_usage_record(data, size, ORLO::system_clock());
  demand(!record || size == kUsageRecordSize);
  if (!record) return;
  demand(!record->main_file || record->main_file->length() <= 262);
  demand(!record->last_use || record->last_use->empty() || record->last_use->length() >= 19);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // An exact copy on the heap, so that a read beyond the end is seen.
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  check(bytes.data(), bytes.size());
  // The same bytes as the content of a record of the right size.
  std::string record("\x28\x02\0\0", 4);
  record += bytes;
  record.resize(kUsageRecordSize);
  check(record.data(), record.size());
  return 0;
}
