#include "orlo/report.h"

#include <utility>

#include "orlo/core_module.h"
#include "orlo/message_box.h"
#include "orlo/report_state.h"

namespace ORLO {

std::atomic<int> InShutDown{0};

namespace {

constexpr const char* kCaption = "Exception";
constexpr const char* kNoText = "generic exception";
constexpr const char* kComCaption = "COM Exception";
constexpr uint32_t kBoxFlags = kBoxTaskModal | kBoxExclamation;

/// Both under report_lock().
struct State {
  int report_depth = 0;
  ReportSink sink;
};

State& state() noexcept {
  // Never destroyed: a report may come while statics go down. A process that has no memory for it
  // can only end. NOLINTNEXTLINE(bugprone-unhandled-exception-at-new)
  static State& made = *new State;
  return made;
}

thread_local int despite_shutdown = 0;

ReportSink installed_sink() {
  const Lock hold(report_lock());
  return state().sink;
}

/// Where the text of a failure can't be had: why not.
template <typename Compose>
String text_or_failure(const Compose& compose) {
  try {
    return compose();
  } catch (const Exception& failure) {
    return failure.what();
  }
}

template <typename Compose>
String text_or_fallback(const Compose& compose) {
  try {
    return text_or_failure(compose);
  } catch (...) {
    return kNoText;
  }
}

template <typename Compose>
void show(const Compose& compose, const char* caption, ReportOwner owner) {
  const ReportSink sink = installed_sink();
  const String text = text_or_fallback(compose);
  if (sink) {
    sink(caption, text);
  } else {
    message_box(owner, text.c_str(), caption, kBoxFlags);
  }
}

/// False if the report was dropped.
template <typename Compose>
bool report(const Compose& compose, const char* caption, ReportOwner owner) noexcept {
  if (in_shutdown() && despite_shutdown == 0) return false;
  const ReportScope scope;
  if (scope.depth() != 0) return false;
  try {
    show(compose, caption, owner != nullptr ? owner : thread_main_window());
  } catch (...) {
    // Not even a text could be made; the system's box needs none of ours.
    message_box(owner, kNoText, caption, kBoxFlags);
  }
  return true;
}

}  // namespace

CriticalSection& report_lock() noexcept {
  // As state(). NOLINTNEXTLINE(bugprone-unhandled-exception-at-new)
  static CriticalSection& section = *new CriticalSection;
  return section;
}

ReportScope::ReportScope() noexcept {
  const Lock hold(report_lock());
  depth_ = state().report_depth++;
}

ReportScope::~ReportScope() {
  const Lock hold(report_lock());
  --state().report_depth;
}

ReportsDespiteShutDown::ReportsDespiteShutDown() noexcept {
  ++despite_shutdown;
}

ReportsDespiteShutDown::~ReportsDespiteShutDown() {
  --despite_shutdown;
}

void report_exception(const Exception& exception, ReportOwner owner) noexcept {
  report([&] { return exception_text(exception); }, kCaption, owner);
}

void report_std_exception(const std::exception& exception, ReportOwner owner) noexcept {
  const auto compose = [&] {
    return core_formatted(kCoreStdException, "An exception occured:\n%s\n", exception.what());
  };
  report(compose, kCaption, owner);
}

void report_com_error(const ComError& error, ReportOwner) noexcept {
  report([&] { return com_error_text(error); }, kComCaption, nullptr);
}

bool report_assertion(const char* expression, const char* source, int line) noexcept {
  const auto compose = [&] {
    return String::formatted("Assertion failed: %s, file %s, line %d", expression, source, line);
  };
  return report(compose, kCaption, nullptr);
}

void set_report_sink(ReportSink sink) {
  const Lock hold(report_lock());
  state().sink = std::move(sink);
}

}  // namespace ORLO
