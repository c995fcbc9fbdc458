#include "orlo/shutdown.h"

#include "orlo/assertion.h"
#include "orlo/com_objects.h"
#include "orlo/report.h"
#include "orlo/report_state.h"

namespace ORLO {
namespace {

/// An assertion about the shut-down itself, which would be told to nobody otherwise.
void check_told(bool holds, const char* expression, int line) {
  const ReportsDespiteShutDown told;
  check_assertion(holds, expression, "shutdown", line);
}

}  // namespace

bool prepare_shutdown(ComObjects& objects, const void* main_window) {
  check_told(begin_shutdown() == 1, "InShutDown==1", __LINE__);
  objects.revoke_registration();
  if (objects.any_alive()) {
    take_back_shutdown();
    return false;
  }
  check_told(main_window == nullptr, "!mainThread._hmainwnd", __LINE__);
  return true;
}

}  // namespace ORLO
