// The program's about box.
#pragma once

#include "orlo/about_dlg.h"
#include "platform/resources.h"

class AboutZolvaneController : public ORLO::AboutDlgController {
 public:
  explicit AboutZolvaneController(HWND window);

  /// Returns when the user has closed it.
  static void show(const Resources& resources, HWND owner);
};
