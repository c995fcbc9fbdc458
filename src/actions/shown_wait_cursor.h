// A wait cursor for as long as something takes.
#pragma once

#include "actions/action_frame.h"

class ShownWaitCursor {
 public:
  explicit ShownWaitCursor(ActionFrame& frame) : frame_(frame) { frame_.begin_wait_cursor(); }
  ~ShownWaitCursor() { frame_.end_wait_cursor(); }
  ShownWaitCursor(const ShownWaitCursor&) = delete;
  ShownWaitCursor& operator=(const ShownWaitCursor&) = delete;

 private:
  ActionFrame& frame_;
};
