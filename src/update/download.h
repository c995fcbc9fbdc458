// Fetching the setup of a new version, and handing over to it.
#pragma once

#include "update/pad_info.h"
#include "update/update_frame.h"
#include "update/update_services.h"

/// Used on one thread.
class Download {
 public:
  /// All must outlive it.
  Download(const UpdateSettings& settings, const UpdateServices& services, UpdateFrame& frame)
      : settings_(settings), services_(services), frame_(frame) {}

  /// Fetches the address into a file of its last part's name in the folder for temporary files.
  /// The file's path; empty if that failed, and then what came of it stays there.
  String downloadFile(const String& url, const String& agent, TransferProgress* progress) const;

  /// Fetches the new version's setup, leaves a marker that names it for the next start with
  /// -postupdate, starts it and ends the process. False if it returns at all.
  bool downloadAndRun(const PadInfo& info) const;

 private:
  String fetch_shown(const PadInfo& info, ShownDownload& shown) const;

  const UpdateSettings& settings_;
  const UpdateServices& services_;
  UpdateFrame& frame_;
};
