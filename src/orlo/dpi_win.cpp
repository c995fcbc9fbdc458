#include <windows.h>

#include "orlo/dpi.h"

namespace ORLO {

int screen_dpi() noexcept {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

}  // namespace ORLO
