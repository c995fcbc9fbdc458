#include "orlo/report.h"

#include <atomic>
#include <utility>

#include "orlo/thread.h"

namespace ORLO {
namespace {

std::atomic<bool> shutting_down{false};
std::atomic<int> reports_in_progress{0};

CriticalSection& sink_lock() {
  static CriticalSection section;
  return section;
}

ReportSink& sink() {
  static ReportSink installed;
  return installed;
}

/// Counts a report for its scope; only the outermost one is shown.
class ReportScope {
 public:
  ReportScope() : outermost_(reports_in_progress.fetch_add(1) == 0) {}
  ~ReportScope() { reports_in_progress.fetch_sub(1); }
  ReportScope(const ReportScope&) = delete;
  ReportScope& operator=(const ReportScope&) = delete;
  bool outermost() const { return outermost_; }

 private:
  bool outermost_;
};

void show(const String& text, const char* caption, ReportOwner owner) {
  if (shutting_down) return;
  const ReportScope scope;
  if (!scope.outermost()) return;
  ReportSink installed;
  {
    const Lock hold(sink_lock());
    installed = sink();
  }
  // No lock is held while the box is open: other threads must be able to drop their reports.
  if (installed) {
    installed(caption, text);
  } else {
    show_report_box(text, caption, owner);
  }
}

}  // namespace

void report_exception(const Exception& exception, ReportOwner owner) {
  show(exception_text(exception), "Exception", owner);
}

void report_std_exception(const std::exception& exception, ReportOwner owner) {
  show(String::formatted("An exception occured:\n%s\n", exception.what()), "Exception", owner);
}

void begin_shutdown() noexcept {
  shutting_down = true;
}
bool in_shutdown() noexcept {
  return shutting_down;
}

void set_report_sink(ReportSink installed) {
  const Lock hold(sink_lock());
  sink() = std::move(installed);
}

}  // namespace ORLO
