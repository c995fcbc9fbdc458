#include "orlo/exception_filter.h"

#include <algorithm>
#include <forward_list>

#include "orlo/core_module.h"
#include "orlo/message_box.h"
#include "orlo/report.h"
#include "orlo/report_state.h"

namespace ORLO {
namespace {

constexpr uint32_t kSoftwareDefined = 1u << 29;
constexpr uint32_t kFirstError = 0x80000000;
constexpr uint32_t kSeverity = 0xC0000000;
constexpr uint32_t kWarning = 0x80000000;
constexpr uint32_t kFirstFloat = 0xC000008D;
constexpr uint32_t kLastFloat = 0xC0000093;

constexpr unsigned kStringNullWritten = 282;
constexpr unsigned kStringNullRead = 283;
constexpr unsigned kStringUnknown = 279;

constexpr uint32_t kReportBox = kBoxTaskModal | kBoxExclamation;
constexpr uint32_t kSecondFailureBox = kBoxSystemModal | kBoxExclamation;
constexpr uint32_t kLongWait = 15000;
constexpr uint32_t kRetryWait = 3000;

struct CodeRow {
  uint32_t first;
  uint32_t last;
  /// Of the first code; the following ones have the following strings.
  unsigned string;
  bool may_skip;
};

constexpr CodeRow kCodes[] = {
    {kExceptionAccessViolation, kExceptionAccessViolation, 256, true},
    {0xC0000006, 0xC0000006, 257, false},
    {0xC0000008, 0xC0000008, 258, false},
    {0xC0000017, 0xC0000017, 259, false},
    {0xC000001D, 0xC000001D, 260, true},
    {0xC0000025, 0xC0000025, 261, false},
    {0xC0000026, 0xC0000026, 262, true},
    {0xC000008C, 0xC000008C, 263, true},
    {kFirstFloat, kLastFloat, 264, false},
    {0xC0000094, 0xC0000096, 271, true},
    {0xC00000FD, 0xC00000FD, 274, false},
    {0xC000013A, 0xC000013A, 275, false},
    {0xC0000135, 0xC0000135, 276, false},
    {0xC0000142, 0xC0000142, 277, false},
    {kExceptionCpp, kExceptionCpp, 278, false},
    {0xC06D007E, 0xC06D007F, 289, false},
};

const CodeRow* row_of(uint32_t code) noexcept {
  const auto* const found = std::find_if(std::begin(kCodes), std::end(kCodes), [=](auto& row) {
    return row.first <= code && code <= row.last;
  });
  return found != std::end(kCodes) ? found : nullptr;
}

/// What the user has said about an address.
struct Answer {
  uintptr_t address;
  bool go_on;
};

/// Under report_lock().
std::forward_list<Answer>& answered_addresses() {
  // Never destroyed: exceptions come while statics go down, too.
  static auto& list = *new std::forward_list<Answer>;
  return list;
}

Answer* find_answer(uintptr_t address) {
  auto& list = answered_addresses();
  const auto found = std::find_if(list.begin(), list.end(),
                                  [=](const Answer& answer) { return answer.address == address; });
  return found != list.end() ? &*found : nullptr;
}

bool may_go_on_unasked(uintptr_t address) {
  const Lock hold(report_lock());
  const Answer* const answer = find_answer(address);
  return answer != nullptr && answer->go_on;
}

void remember(uintptr_t address, bool go_on) {
  const Lock hold(report_lock());
  Answer* const answer = find_answer(address);
  if (answer != nullptr) {
    answer->go_on = go_on;
  } else {
    answered_addresses().push_front({address, go_on});
  }
}

bool continuable(const ProcessorException& exception) noexcept {
  return (exception.flags & kNonContinuable) == 0;
}

/// Mends what can be mended so that the thread could go on.
bool can_go_on(const ProcessorException& exception, FilterServices& services) {
  if (exception.code >= kFirstFloat && exception.code <= kLastFloat) {
    services.clear_float_exceptions();
    return true;
  }
  const CodeRow* const row = row_of(exception.code);
  if (row == nullptr || !row->may_skip) return false;
  const int length = services.instruction_length(exception.address);
  if (length <= 0) return false;
  services.skip(length);
  return true;
}

/// Whether the user lets the thread go on; an exception that can't be gone on from is only shown.
bool ask_user(const ProcessorException& exception, bool resumable, FilterServices& services) {
  if (resumable && may_go_on_unasked(exception.address)) return true;
  String text = core_string(exception_string(exception),
                            String::formatted("exception code: 0x%08X", exception.code).c_str());
  if (!resumable) {
    services.ask(text, kReportBox);
    return false;
  }
  text.append(core_string(kCoreGoOn, " - Continue execution?"));
  const bool go_on = services.ask(text, kReportBox | kBoxOkCancel) == kAnswerOk;
  remember(exception.address, go_on);
  return go_on;
}

/// A failure that can't be gone on from, inside a report or in another thread during one.
void fail_inside_report(int depth, FilterServices& services) {
  if (depth == 1) {
    services.ask(core_string(kCoreSecondFailure,
                             "An uncontinuable exception occured\n"
                             "while processing an previous exception!"),
                 kSecondFailureBox);
    return;
  }
  FilterRetries& retries = filter_retries();
  if (retries.retries_left == 0) {
    // The reports below may still be read meanwhile.
    if (depth == 2) services.wait(kLongWait);
    services.exit_process(-1);
    return;
  }
  services.wait(kRetryWait);
  --retries.retries_left;
  ++retries.retries_done;
}

bool goes_on(const ProcessorException& exception, FilterServices& services) {
  const bool resumable = can_go_on(exception, services) && continuable(exception);
  const ReportScope scope;
  if (in_shutdown()) {
    if (!resumable) services.exit_process(-1);
    return resumable;
  }
  if (scope.depth() == 0) return ask_user(exception, resumable, services);
  if (!resumable) fail_inside_report(scope.depth(), services);
  return resumable;
}

}  // namespace

unsigned exception_string(const ProcessorException& exception) noexcept {
  const bool at_null = exception.code == kExceptionAccessViolation &&
                       exception.parameter_count == 2 && exception.parameters[1] == 0;
  if (at_null) return exception.parameters[0] != 0 ? kStringNullWritten : kStringNullRead;
  const CodeRow* const row = row_of(exception.code);
  return row != nullptr ? row->string + (exception.code - row->first) : kStringUnknown;
}

FilterResult filter_exception(const ProcessorException& exception,
                              FilterServices& services) noexcept {
  const uint32_t code = exception.code;
  if ((code & kSoftwareDefined) != 0 && (exception.flags & kLastChance) == 0) {
    return FilterResult::continue_search;
  }
  if (code < kFirstError && continuable(exception)) return FilterResult::continue_execution;
  if ((code & kSeverity) == kWarning) return FilterResult::continue_search;
  try {
    return goes_on(exception, services) ? FilterResult::continue_execution
                                        : FilterResult::execute_handler;
  } catch (...) {
    // Without memory for the question there is nobody to ask.
    return FilterResult::execute_handler;
  }
}

FilterRetries& filter_retries() noexcept {
  thread_local FilterRetries retries;
  return retries;
}

void forget_answered_addresses() noexcept {
  const Lock hold(report_lock());
  answered_addresses().clear();
}

}  // namespace ORLO
