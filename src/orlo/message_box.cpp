#include "orlo/message_box.h"

#include <atomic>

namespace ORLO {
namespace {

std::atomic<BoxAnswer> box_answer{nullptr};

}  // namespace

int message_box(void* window, const char* text, const char* caption, uint32_t flags) noexcept {
  const BoxAnswer answer = box_answer;
  if (answer != nullptr) return answer(text, caption, flags);
  return show_message_box(window, text, caption, flags);
}

void answer_boxes_with(BoxAnswer answer) noexcept {
  box_answer = answer;
}

}  // namespace ORLO
