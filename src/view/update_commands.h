// What the main window has to do with updates of the program itself: the check in the background,
// the one on demand, the description's page, and the end of all that.
#pragma once

#include "orlo/orlowin.h"
#include "platform/resources.h"
#include "update/box_update_frame.h"
#include "update/update_checker.h"
#include "view/dialog_frame.h"
#include "view/dialog_services.h"

/// Lives on the main thread.
class UpdateCommands {
 public:
  /// What is referred to must outlive it.
  struct Parts {
    HWND window;
    const Resources& resources;
    DialogFrame& frame;
    const DialogServices& services;
  };

  explicit UpdateCommands(const Parts& parts);

  /// Starts the check in the background.
  void start() { checker_.resume(); }
  void check_now() { checker_.checkNow(); }
  /// Opens the description's address.
  void show_description();

  /// Asks the check in the background to end; doesn't wait.
  void begin_end();
  /// Waits a moment for it, with messages flowing. If it is in a call that can't be ended, the
  /// process ends here, so nothing may be left to do.
  void end();

 private:
  /// The main window for the check on demand, whose boxes are among the window's own.
  class ManualFrame final : public UpdateFrame {
   public:
    explicit ManualFrame(const Parts& parts)
        : frame_(parts.frame),
          resources_(parts.resources),
          end_process_(parts.services.update.end_process) {}
    void* window() override { return frame_.owner(); }
    void tell(const String& text, const String& title) override { frame_.tell(text, title); }
    bool ask(const String& text, const String& title) override { return frame_.ask(text, title); }
    void hide() override;
    std::unique_ptr<ShownDownload> show_download(const String& url) override;
    void end_process() override { end_process_(); }

   private:
    DialogFrame& frame_;
    const Resources& resources_;
    const std::function<void()> end_process_;
  };

  UpdateChecker::Parts checker_parts(const DialogServices& services);

  const HWND window_;
  const Resources resources_;
  Shell& shell_;
  const String description_url_;
  const std::function<void()> end_process_;
  BoxUpdateFrame background_frame_;
  ManualFrame manual_frame_;
  UpdateChecker checker_;
};
