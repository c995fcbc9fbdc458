// The main window as package actions and tools see it.
#pragma once

#include <functional>
#include <optional>

#include "actions/action_frame.h"
#include "inventory/refresh_cycle.h"
#include "orlo/wait_cursor.h"

class DialogFrame : public ActionFrame {
 public:
  struct Parts {
    HWND window;
    int& open_boxes;  ///< counts the boxes, so that the end of the program can close them
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
  void begin_wait_cursor() override { wait_cursor_.emplace(); }
  void end_wait_cursor() noexcept override { wait_cursor_.reset(); }
  unsigned refreshCount() const override { return parts_.cycle.refreshCount(); }
  bool closing() const override { return parts_.closing(); }
  void requestRefresh() override { parts_.requestRefresh(); }

 private:
  int box(const String& text, const String& title, unsigned flags);

  const Parts parts_;
  std::optional<ORLO::WaitCursor> wait_cursor_;
};

/// Ends what was opened from a window, maybe by way of others: closes it, or answers No where a
/// question can't be closed.
void close_boxes_above(HWND window);
