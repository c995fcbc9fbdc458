#include "orlo/report.h"

namespace ORLO {

ReportOwner thread_main_window() noexcept {
  return nullptr;
}

}  // namespace ORLO
