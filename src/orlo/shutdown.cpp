#include "orlo/shutdown.h"

#include "orlo/assertion.h"
#include "orlo/com_objects.h"
#include "orlo/report.h"

namespace ORLO {

bool prepare_shutdown(ComObjects& objects, const void* main_window) {
  check_assertion(begin_shutdown() == 1, "InShutDown==1", "shutdown", __LINE__);
  objects.revoke_registration();
  if (objects.any_alive()) {
    take_back_shutdown();
    return false;
  }
  check_assertion(main_window == nullptr, "!mainThread._hmainwnd", "shutdown", __LINE__);
  return true;
}

}  // namespace ORLO
