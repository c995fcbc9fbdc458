#include "orlo/report.h"

#include "orlo/thread_record.h"

namespace ORLO {

ReportOwner thread_main_window() noexcept {
  return current_thread_record()._hmainwnd;
}

}  // namespace ORLO
