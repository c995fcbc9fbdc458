#include "orlo/wait_cursor.h"

#include "orlo/thread_record.h"

namespace ORLO {

WaitCursor::WaitCursor(LPCSTR name) noexcept : previous_(current_thread_record().cursor) {
  const HCURSOR cursor = LoadCursorA(nullptr, name != nullptr ? name : IDC_ARROW);
  current_thread_record().cursor = cursor;
  SetCursor(cursor);
}

WaitCursor::~WaitCursor() {
  current_thread_record().cursor = previous_;
  SetCursor(previous_ != nullptr ? previous_ : LoadCursorA(nullptr, IDC_ARROW));
}

}  // namespace ORLO
