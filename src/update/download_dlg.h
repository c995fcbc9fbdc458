// The dialog of a download: the address and a bar that moves.
#pragma once

#include "orlo/wait_cursor.h"
#include "platform/resources.h"
#include "update/update_frame.h"

/// Nobody dispatches messages while it is there, so it draws itself where it changes. Belongs to
/// the thread that made it.
class DownloadDlg final : public ShownDownload {
 public:
  /// Shows the dialog over `owner`; throws LWE if there can be none.
  DownloadDlg(HWND owner, const Resources& resources, const String& url);
  ~DownloadDlg() override { close(); }
  DownloadDlg(const DownloadDlg&) = delete;
  DownloadDlg& operator=(const DownloadDlg&) = delete;

  void set_range(int kilobytes) override;
  /// The bar stays where it is as long as no range has been told.
  void set_position(int kilobytes) override;
  void close() noexcept override;

  HWND window() const noexcept { return window_; }

 private:
  HWND bar() const noexcept;

  const ORLO::WaitCursor wait_;
  HWND window_;
  bool has_range_ = false;
};
