#include "log.h"

namespace gallery {

void Log::add(const String& line) const {
  const String text = String::formatted("%s\r\n", line.c_str());
  const int end = GetWindowTextLengthA(edit_);
  SendMessageA(edit_, EM_SETSEL, static_cast<WPARAM>(end), end);
  SendMessageA(edit_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
}

}  // namespace gallery
