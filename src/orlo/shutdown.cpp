#include "orlo/shutdown.h"

#include "orlo/assertion.h"
#include "orlo/com_objects.h"
#include "orlo/report.h"

namespace ORLO {
namespace {

/// Lets reports through for its scope, whatever shut-down has begun by now.
class ReportsLetThrough {
 public:
  ReportsLetThrough() noexcept : begun_(InShutDown.exchange(0)) {}
  ~ReportsLetThrough() { InShutDown += begun_; }
  ReportsLetThrough(const ReportsLetThrough&) = delete;
  ReportsLetThrough& operator=(const ReportsLetThrough&) = delete;

 private:
  const int begun_;
};

}  // namespace

bool prepare_shutdown(ComObjects& objects, const void* main_window) {
  // Both assertions come before reports are barred, or nobody would learn of them. For a second
  // begin they are barred already, by the first one.
  if (in_shutdown()) {
    const ReportsLetThrough to_say_so;
    assertion_failed("InShutDown==1", "shutdown", __LINE__);
  }
  objects.revoke_registration();
  if (objects.any_alive()) return false;
  check_assertion(main_window == nullptr, "!mainThread._hmainwnd", "shutdown", __LINE__);
  begin_shutdown();
  return true;
}

}  // namespace ORLO
