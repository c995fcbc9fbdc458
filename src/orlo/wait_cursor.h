#pragma once

#include "orlo/orlowin.h"

namespace ORLO {

/// Shows a cursor over all windows of the thread for its scope; nestable. A null name shows the
/// arrow.
class WaitCursor {
 public:
  explicit WaitCursor(LPCSTR name = IDC_WAIT) noexcept;
  ~WaitCursor();
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  const HCURSOR previous_;
};

}  // namespace ORLO
