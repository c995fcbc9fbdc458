#include "orlo/thread_record.h"

namespace ORLO {

ThreadRecord& current_thread_record() noexcept {
  thread_local ThreadRecord record;
  return record;
}

}  // namespace ORLO
