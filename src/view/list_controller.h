// The main list's controller.
#pragma once

#include <functional>

#include "orlo/subclass_controller.h"

/// Tells of a right click on the header: it comes as the request for a menu, which ends at the list
/// and doesn't reach the dialog with the header's name.
class ListController : public ORLO::SubclassController {
 public:
  using HeaderMenu = std::function<void(POINT on_screen)>;
  ListController(HWND list, HeaderMenu header_menu);

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;

 private:
  const HeaderMenu header_menu_;
};
