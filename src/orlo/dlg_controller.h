// Dialogs: the controller behind a dialog window, and the way to open one.
#pragma once

#include <functional>
#include <memory>

#include "orlo/controller.h"
#include "orlo/para_struct.h"

namespace ORLO {

/// Lives from the start of its dialog to the end of the window, which owns it. WndProc, Command and
/// Notify answer non-zero for what is handled; a value that the sender of the message is to get
/// goes through set_result().
class DlgController : public Controller {
 public:
  explicit DlgController(HWND window, std::unique_ptr<ParaStruct> parameters = nullptr);
  ~DlgController() override;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;
  LRESULT Command(unsigned id, unsigned code, HWND control) override;
  /// Runs once the controls are filled; false if it has set the focus itself.
  virtual LRESULT Init(HWND focus_window);
  /// Moves data between the controls and the parameters: reads the controls when `save` is set.
  /// False keeps the dialog from closing.
  virtual bool CanClose(bool save);
  virtual void OnOk();
  virtual void EndDialog(INT_PTR result);

  bool is_modal() const noexcept { return is_modal_; }
  /// Called by OnOk with the parameters.
  std::function<void(ParaStruct&)> exit_function;

 protected:
  /// Makes `result` the answer to the message being handled; returns what the handler returns.
  LRESULT set_result(LRESULT result) const noexcept;
  HWND control(int id) const noexcept { return GetDlgItem(_hwnd, id); }

  /// Null if the dialog has none.
  const std::unique_ptr<ParaStruct> para;

 private:
  friend class Dialog;
  bool is_modal_ = false;
};

class Dialog {
 public:
  using Factory = std::function<std::unique_ptr<DlgController>(HWND)>;

  /// Opens a dialog from a template in memory, which must live as long as the dialog, and returns
  /// what EndDialog was given; -1 if the dialog never came up because the factory gave nothing or
  /// failed, which has been reported. Throws LWE if there could be no window.
  static INT_PTR DoModal(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                         const Factory& factory);
  /// The same without a loop of its own. Null if the factory gave nothing or failed.
  static HWND DoModeless(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                         const Factory& factory);

 private:
  struct Start;
  static INT_PTR CALLBACK dialog_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  static INT_PTR start(HWND window, WPARAM focus, Start& start);
};

/// The controller of a dialog window; null for any other window.
DlgController* dialog_controller(HWND window) noexcept;

}  // namespace ORLO
