// What the dialogs that look into a package have in common.
#pragma once

#include "inventory/entry.h"
#include "orlo/dialog_mixins.h"
#include "orlo/window_icons.h"
#include "platform/resources.h"

/// A dialog about one package. It works on a copy of the package's record, as that may go or change
/// while the dialog is open.
class InspectionDlg
    : public ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>> {
 public:
  /// Puts the window over its owner, no larger than the work area.
  LRESULT Init(HWND focus_window) override;

 protected:
  /// The window says `subject` after its title.
  InspectionDlg(HWND window, const Resources& resources, const UninstallEntry& package,
                const String& subject);

  /// Makes the window this much larger than its template, in pixels of a screen of 96 dots per
  /// inch, and lays the controls out by these rules. The template's size is the smallest.
  template <size_t count>
  void lay_out(const ORLO::ResizeRule (&rules)[count], int extra_width, int extra_height) {
    resizer.add(rules, count);
    resizer.init(_hwnd);
    grow(extra_width, extra_height);
  }

  const UninstallEntry entry;

 private:
  using Base = ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>>;

  void grow(int extra_width, int extra_height);

  const ORLO::WindowIcons icons_;
};
