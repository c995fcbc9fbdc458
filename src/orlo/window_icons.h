// The icons of a window: the big one for the switch between tasks, the small one for its title.
#pragma once

#include "orlo/window_handles.h"

namespace ORLO {

/// Owned as long as this lives. The window shows none of an icon that can't be loaded.
class WindowIcons {
 public:
  /// Gives the window the icon with this id, in the system's two sizes.
  WindowIcons(HWND window, HINSTANCE module, unsigned id);

 private:
  OwnedIcon big_;
  OwnedIcon small_;
};

}  // namespace ORLO
