#include "orlo/report.h"

#include <windows.h>

namespace ORLO {

void show_report_box(const String& text, const char* caption, ReportOwner owner) {
  MessageBoxA(static_cast<HWND>(owner), text.c_str(), caption, MB_TASKMODAL | MB_ICONEXCLAMATION);
}

}  // namespace ORLO
