// Dialogs that are open once at most, known by a name.
#pragma once

#include <string>
#include <utility>

#include "orlo/dlg_controller.h"

namespace ORLO {

/// A window's claim to a name of this process, for as long as this object lives. Of two claims the
/// first holds.
class GlobalName {
 public:
  GlobalName(const char* name, HWND window);
  ~GlobalName();
  GlobalName(const GlobalName&) = delete;
  GlobalName& operator=(const GlobalName&) = delete;

  /// The window that had the name before; null if this claim holds.
  HWND holder_before() const noexcept { return before_; }

 private:
  const std::string name_;
  HWND before_ = nullptr;
};

/// Restores a window if it is minimised and activates it, or what it has opened.
void bring_to_front(HWND window);

/// A second opening closes itself with IDCANCEL and brings the first to the front.
template <typename Base>
class GlblDlgTemplate : public Base {
 public:
  template <typename... Args>
  GlblDlgTemplate(HWND window, const char* name, Args&&... args)
      : Base(window, std::forward<Args>(args)...), name_(name, window) {}

  LRESULT Init(HWND focus_window) override {
    if (name_.holder_before() == nullptr) return Base::Init(focus_window);
    bring_to_front(name_.holder_before());
    this->EndDialog(IDCANCEL);
    return 0;
  }

 private:
  const GlobalName name_;
};

}  // namespace ORLO
