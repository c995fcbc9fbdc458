#include "update/update_checker.h"

#include <utility>

UpdateChecker::UpdateChecker(const Parts& parts)
    : ActiveFinisher("UpdateChecker"),
      internet_(parts.background.internet),
      apply_thread_language_(parts.apply_thread_language),
      background_(parts.settings, parts.background, parts.background_frame),
      manual_(parts.settings, parts.manual, parts.manual_frame) {}

UpdateChecker::~UpdateChecker() {
  cancel();
  stop(WaitMode::pump);
}

void UpdateChecker::cancel() {
  internet_.cancel();
  stop(WaitMode::none);
}

int UpdateChecker::Run() {
  apply_thread_language_();
  return stop_requested() ? 0 : background_.checkInBackground();
}
