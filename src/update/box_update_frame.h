// The main window as the thread sees it that checks for updates in the background.
#pragma once

#include <atomic>
#include <functional>

#include "platform/resources.h"
#include "update/update_frame.h"

/// Its boxes belong to the main window and are open on the thread that checks.
class BoxUpdateFrame final : public UpdateFrame {
 public:
  /// `end_process` is called on the thread that checks.
  BoxUpdateFrame(HWND window, const Resources& resources, std::function<void()> end_process);

  void* window() override { return window_; }
  void tell(const String& text, const String& title) override;
  bool ask(const String& text, const String& title) override;
  void hide() override;
  std::unique_ptr<ShownDownload> show_download(const String& url) override;
  void end_process() override { end_process_(); }

  /// For the main thread. From the first call on nothing is shown any more. A box may have been
  /// about to open, so it is called until the thread has ended.
  void close_boxes() noexcept;

 private:
  int box(const String& text, const String& title, unsigned flags);

  const HWND window_;
  const Resources resources_;
  const std::function<void()> end_process_;
  std::atomic<bool> closing_{false};
  std::atomic<uint32_t> thread_{0};  ///< the system's number of the one that checks
};
