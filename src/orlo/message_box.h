// The library's message box.
#pragma once

#include <cstdint>

namespace ORLO {

/// Parts of a box's flags, with the system's values.
enum BoxFlag : uint32_t {
  kBoxOk = 0,
  kBoxOkCancel = 1,
  kBoxExclamation = 0x30,
  kBoxSystemModal = 0x1000,
  kBoxTaskModal = 0x2000,
  /// Add one button each, captions 8 and 9 of the module ORLOCORE, which answer with their flag.
  kBoxExtra8 = 0x1000000,
  kBoxExtra9 = 0x2000000,
};

inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerCancel = 2;

/// Shows the texts until the user has pressed a button, and returns that button's id. `window` (an
/// HWND on the target, or null) owns the box. With the module ORLOCORE the box is a dialog of our
/// own, with the module's captions; without it, or where that can't be, the system's.
int message_box(void* window, const char* text, const char* caption, uint32_t flags) noexcept;

/// Answers in the user's place, on whatever thread; may end the process instead.
using BoxAnswer = int (*)(const char* text, const char* caption, uint32_t flags) noexcept;
/// From here on no box appears: a run that nobody watches would wait for ever. Null lets them
/// appear again.
void answer_boxes_with(BoxAnswer answer) noexcept;

/// The box itself. Chosen at link time.
int show_message_box(void* window, const char* text, const char* caption, uint32_t flags) noexcept;

}  // namespace ORLO
