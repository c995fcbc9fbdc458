#include "orlo/report.h"

#include <cstdio>

namespace ORLO {

void show_report_box(const String& text, const char* caption, ReportOwner) {
  std::fprintf(stderr, "%s: %s\n", caption, text.c_str());
}

}  // namespace ORLO
