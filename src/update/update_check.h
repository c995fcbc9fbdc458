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
  /// Notes that there is an attempt today. False if there has been one before; true, too, if there
  /// is nowhere to note it. Throws SDKException if it can't be written.
  bool note_attempt() const;
  void look_for_new_version();
  void offer(const PadInfo& info);
  void show_messages(const PadInfo& info);
  /// Two formats as one: what fills the first must not be taken for a format itself.
  String joined(unsigned headline, unsigned question) const;

  const UpdateSettings settings_;
  const UpdateServices services_;
  UpdateFrame& frame_;
  const Download download_;
};
