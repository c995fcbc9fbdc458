// One object per window: the library's window procedures turn each message into a virtual call.
#pragma once

#include "orlo/orlowin.h"

namespace ORLO {

class ControllerCall;

class Controller {
 public:
  struct Message {
    UINT id;
    WPARAM wparam;
    LPARAM lparam;
  };

  explicit Controller(HWND window) noexcept : _hwnd(window) {}
  /// Takes itself off the window. The end of the thread's main window ends its message loop.
  virtual ~Controller();
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  /// All messages without an operation of their own.
  virtual LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam);
  virtual void Size(WPARAM type, int width, int height);
  virtual void Paint();
  virtual LRESULT Command(unsigned id, unsigned code, HWND control);
  virtual LRESULT Notify(unsigned id, NMHDR* header);
  virtual LRESULT Frame(unsigned id);

  HWND window() const noexcept { return _hwnd; }

  /// Puts the pointer to this object into the window, at `index` of its long values, which must be
  /// free.
  void attach(int index);
  void detach() noexcept;

 protected:
  /// The message being handled. Only to be used inside a call from the window procedure.
  const Message& current_message() const noexcept;
  /// Shows the thread's cursor where it should cover the window's own; true if it did.
  static bool keep_thread_cursor(LPARAM hit) noexcept;

  HWND _hwnd;

 private:
  friend class ControllerCall;
  ControllerCall* calls_ = nullptr;
  int attached_index_ = 0;
  bool attached_ = false;
  bool doomed_ = false;
};

/// The controller that keeps itself at `index` of the window's long values; null if there is none.
Controller* attached_controller(HWND window, int index) noexcept;
/// The same through the thread's cache, for window procedures: the calling thread owns the window.
Controller* plain_controller_of_own_window(HWND window) noexcept;
Controller* dialog_controller_of_own_window(HWND window) noexcept;

/// The controller of a window that calls itself a plain one or a dialog of ours; null for a control
/// that was taken over and for all other windows.
Controller* controller_of(HWND window) noexcept;

}  // namespace ORLO
