#include "orlo/file_dialog.h"

#include <algorithm>

namespace ORLO {

String system_filter(const String& filter) {
  String text = filter;
  // The text's own terminator is the second NUL behind a last "|".
  if (text.empty() || text.c_str()[text.length() - 1] != '|') text.append('|');
  char* const first = text.writable();
  std::replace(first, first + text.length(), '|', '\0');
  return text;
}

}  // namespace ORLO
