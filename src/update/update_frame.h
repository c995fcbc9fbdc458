// The main window as a check for updates sees it.
#pragma once

#include <memory>

#include "platform/internet.h"

/// A download that the user sees, under a wait cursor that ends with this object.
class ShownDownload : public TransferProgress {
 public:
  /// Takes the dialog away.
  virtual void close() noexcept = 0;
};

/// Belongs to the thread that checks. When the program is closing nothing is shown any more, and
/// each question is answered No.
class UpdateFrame {
 public:
  virtual ~UpdateFrame() = default;
  /// The window that owns the boxes; an HWND on the target.
  virtual void* window() = 0;
  /// A box with OK alone.
  virtual void tell(const String& text, const String& title) = 0;
  /// A box with Yes and No; true for Yes.
  virtual bool ask(const String& text, const String& title) = 0;
  /// Hides the main window.
  virtual void hide() = 0;
  /// Shows the dialog of a download from this address.
  virtual std::unique_ptr<ShownDownload> show_download(const String& url) = 0;
  /// Ends the process at once, with exit code 0; returns in tests only.
  virtual void end_process() = 0;
};
