// Whether there is a newer version of the program, and what its publisher has to tell.
#pragma once

#include "update/download.h"
#include "update/pad_info.h"
#include "update/update_frame.h"
#include "update/update_services.h"

/// Used on one thread.
class UpdateCheck {
 public:
  /// `frame` must outlive it.
  UpdateCheck(UpdateSettings settings, UpdateServices services, UpdateFrame& frame);
  // The download refers to the members.
  UpdateCheck(const UpdateCheck&) = delete;
  UpdateCheck& operator=(const UpdateCheck&) = delete;

  /// The check that nobody has asked for: at most once a day, and silent about any failure. The
  /// thread's exit code: -1 if the system couldn't be asked whether it is offline, else 0.
  int checkInBackground();
  /// The check on demand, which always ends with a box. Throws what the fetch throws.
  void checkNow();

  /// False if the description can't be used; throws what the fetch throws.
  bool readDescription(PadInfo& info, const String& url, const String& agent,
                       const String& systemText);

 private:
  const UpdateSettings settings_;
  const UpdateServices services_;
  UpdateFrame& frame_;
  const Download download_;
};
