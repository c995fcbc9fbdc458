// A message loop of somebody else's, between the waits inside it and those around it.
#pragma once

#include <utility>

#include "orlo/thread_record.h"

namespace ORLO {

/// For the scope of a modal dialog or a message box: a WM_QUIT that a wait inside it meets is put
/// back for that loop when the outermost of the waits inside it ends.
class ModalScope {
 public:
  ModalScope() noexcept : outer_depth_(std::exchange(current_thread_record().wait_depth, 0)) {}
  ~ModalScope() { current_thread_record().wait_depth = outer_depth_; }
  ModalScope(const ModalScope&) = delete;
  ModalScope& operator=(const ModalScope&) = delete;

 private:
  const int outer_depth_;
};

}  // namespace ORLO
