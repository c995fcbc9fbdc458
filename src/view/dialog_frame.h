// The main window as package actions and tools see it.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "actions/action_frame.h"
#include "inventory/refresh_cycle.h"
#include "orlo/file_dialog.h"
#include "orlo/wait_cursor.h"

class DialogFrame : public ActionFrame {
 public:
  struct Parts {
    HWND window;
    const RefreshCycle& cycle;
    std::function<bool()> closing;
    std::function<void()> requestRefresh;
  };

  /// All parts must outlive the frame.
  explicit DialogFrame(Parts parts);

  void* owner() override { return parts_.window; }
  bool confirm(const String& text, const String& title) override;
  bool ask(const String& text, const String& title) override;
  void warn(const String& text, const String& title) override;
  void begin_wait_cursor() override;
  void end_wait_cursor() noexcept override { wait_cursors_.pop_back(); }
  unsigned refreshCount() const override { return parts_.cycle.refreshCount(); }
  bool closing() const override { return parts_.closing(); }
  void requestRefresh() override { parts_.requestRefresh(); }

  /// The name of a file to be saved; empty if the user has cancelled, or the window is closing.
  String ask_file_name(const ORLO::SaveFileDialog& dialog);
  /// A box with OK alone.
  void tell(const String& text, const String& title);
  /// Opens a dialog of the window's and waits for its end. None opens any more, neither here nor
  /// above, when the window is closing.
  void show(const std::function<void()>& open);
  /// Ends every box and dialog that is open: closes it, or answers No where a question can't be
  /// closed. False if there is none.
  bool close_boxes() const;

 private:
  int box(const String& text, const String& title, unsigned flags);

  const Parts parts_;
  int open_boxes_ = 0;
  std::vector<std::unique_ptr<ORLO::WaitCursor>> wait_cursors_;
};
