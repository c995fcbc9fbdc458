// What actions show to the user, and what they hear of the window that they were started from.
#pragma once

#include "orlo/rstring.h"

/// Lives on the main thread. Boxes belong to the window and return when they have been answered, by
/// the user or by the end of the program.
class ActionFrame {
 public:
  virtual ~ActionFrame() = default;
  /// The window, for what the shell may show; an HWND on the target.
  virtual void* owner() = 0;
  /// OK or Cancel: true for OK.
  virtual bool confirm(const String& text, const String& title) = 0;
  /// Yes or No: true for Yes.
  virtual bool ask(const String& text, const String& title) = 0;
  /// A box with an exclamation mark (flags 0x30).
  virtual void warn(const String& text, const String& title) = 0;
  /// A wait cursor, from here to the matching end.
  virtual void begin_wait_cursor() = 0;
  virtual void end_wait_cursor() noexcept = 0;
  /// How many refreshes have been asked for.
  virtual unsigned refreshCount() const = 0;
  /// The window is being closed: nothing is refreshed any more.
  virtual bool closing() const = 0;
  virtual void requestRefresh() = 0;
};
