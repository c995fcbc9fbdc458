#include <cstdio>

#include "orlo/message_box.h"

namespace ORLO {

int show_message_box(void*, const char* text, const char* caption, uint32_t) noexcept {
  std::fprintf(stderr, "%s: %s\n", caption, text);
  return kAnswerOk;
}

}  // namespace ORLO
