// The main list's controller.
#pragma once

#include <functional>

#include "orlo/subclass_controller.h"

/// Tells of requests for a menu: by a right click on the header, which ends at the list and doesn't
/// reach the dialog with the header's name, and by the keyboard, which has no place on the screen.
class ListController : public ORLO::SubclassController {
 public:
  using HeaderMenu = std::function<void(POINT on_screen)>;
  using KeyMenu = std::function<void()>;
  ListController(HWND list, HeaderMenu header_menu, KeyMenu key_menu);

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;

 private:
  /// False if the request isn't one of those that are told of.
  bool asked_for_menu(HWND asked, LPARAM place);

  const HeaderMenu header_menu_;
  const KeyMenu key_menu_;
};
