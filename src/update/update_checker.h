// The thread that checks for a newer version once, and the same check on demand.
#pragma once

#include "orlo/active_object.h"
#include "update/update_check.h"

/// Its thread may be in a call to a server that nothing ends. So whoever closes the program asks it
/// to end with cancel(), and if it doesn't in time, ends the process around it.
class UpdateChecker : public ORLO::ActiveFinisher {
 public:
  struct Parts {
    UpdateSettings settings;
    UpdateServices background;  ///< used on the checker's thread
    UpdateFrame& background_frame;
    UpdateServices manual;  ///< used on the main thread
    UpdateFrame& manual_frame;
    void (*apply_thread_language)();  ///< called first on the thread
  };

  explicit UpdateChecker(const Parts& parts);
  ~UpdateChecker() override;

  void checkNow() { manual_.checkNow(); }
  /// From here on the background check fetches nothing any more. Doesn't wait.
  void cancel();

 protected:
  int Run() override;

 private:
  Internet& internet_;
  void (*const apply_thread_language_)();
  UpdateCheck background_;
  UpdateCheck manual_;
};
