#include "orlo/exception_filter.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "orlo/core_module_test_support.h"
#include "orlo/report_state.h"
#include "orlo/report_test_support.h"

namespace ORLO {
namespace {

constexpr uint32_t kAccessViolation = 0xC0000005;
constexpr uint32_t kFloatDivision = 0xC000008E;
constexpr uint32_t kStackOverflow = 0xC00000FD;
constexpr int kOk = 1;
constexpr int kCancel = 2;

struct Box {
  std::string text;
  uint32_t flags;
  bool operator==(const Box&) const = default;
};
using Boxes = std::vector<Box>;

class FakeServices : public FilterServices {
 public:
  int ask(const String& text, uint32_t flags) override {
    boxes.push_back({text.c_str(), flags});
    if (while_open) while_open();
    return answer;
  }
  int instruction_length(uintptr_t address) override {
    asked_addresses.push_back(address);
    return length;
  }
  void skip(int bytes) override { skipped += bytes; }
  void clear_float_exceptions() override { ++cleared; }
  void wait(uint32_t milliseconds) override { waits.push_back(milliseconds); }
  // The real one doesn't come back; the decision has to stand one that does.
  void exit_process(int exit_code) override { exit_codes.push_back(exit_code); }

  int answer = kOk;
  int length = 0;
  std::function<void()> while_open;
  Boxes boxes;
  std::vector<uintptr_t> asked_addresses;
  std::vector<uint32_t> waits;
  std::vector<int> exit_codes;
  int skipped = 0;
  int cleared = 0;
};

ProcessorException exception_of(uint32_t code, uint32_t flags = 0, uintptr_t address = 0x401000) {
  ProcessorException exception;
  exception.code = code;
  exception.flags = flags;
  exception.address = address;
  return exception;
}

class ExceptionFilter : public ::testing::Test {
 protected:
  ~ExceptionFilter() override {
    forget_answered_addresses();
    filter_retries() = {};
  }
  FilterResult filter(uint32_t code, uint32_t flags = 0, uintptr_t address = 0x401000) {
    return filter_exception(exception_of(code, flags, address), services);
  }
  FakeServices services;
};

TEST_F(ExceptionFilter, EachCodeHasItsString) {
  struct Row {
    uint32_t code;
    unsigned string;
    bool asks_skipper;
  };
  const Row rows[] = {{0xC0000005, 256, true},  {0xC0000006, 257, false}, {0xC0000008, 258, false},
                      {0xC0000017, 259, false}, {0xC000001D, 260, true},  {0xC0000025, 261, false},
                      {0xC0000026, 262, true},  {0xC000008C, 263, true},  {0xC000008D, 264, false},
                      {0xC000008E, 265, false}, {0xC000008F, 266, false}, {0xC0000090, 267, false},
                      {0xC0000091, 268, false}, {0xC0000092, 269, false}, {0xC0000093, 270, false},
                      {0xC0000094, 271, true},  {0xC0000095, 272, true},  {0xC0000096, 273, true},
                      {0xC00000FD, 274, false}, {0xC000013A, 275, false}, {0xC0000135, 276, false},
                      {0xC0000142, 277, false}, {0xE06D7363, 278, false}, {0xC06D007E, 289, false},
                      {0xC06D007F, 290, false}, {0xC0000007, 279, false}, {0xC0000097, 279, false},
                      {0xC06D0080, 279, false}, {0xC000008B, 279, false}, {0x40000015, 279, false}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.string);
    TestCoreModule module;
    module.strings = {{row.string, "the text"}};
    FakeServices fake;
    EXPECT_EQ(exception_string(exception_of(row.code)), row.string);
    filter_exception(exception_of(row.code, kNonContinuable | kLastChance), fake);
    EXPECT_EQ(fake.boxes, (Boxes{{"the text", 0x2030}}));
    EXPECT_EQ(fake.asked_addresses.size(), row.asks_skipper ? 1u : 0u);
  }
}

TEST_F(ExceptionFilter, AccessAtNullHasStringsOfItsOwn) {
  struct Row {
    uint32_t count;
    uintptr_t writing;
    uintptr_t address;
    unsigned string;
  };
  for (const Row& row :
       {Row{2, 1, 0, 282}, Row{2, 0, 0, 283}, Row{2, 8, 0, 282}, Row{2, 0, 4, 256},
        Row{2, 1, 4, 256}, Row{1, 0, 0, 256}, Row{0, 0, 0, 256}, Row{3, 0, 0, 256}}) {
    SCOPED_TRACE(::testing::PrintToString(row.count) + ", " +
                 ::testing::PrintToString(row.writing));
    ProcessorException exception = exception_of(kAccessViolation);
    exception.parameter_count = row.count;
    exception.parameters[0] = row.writing;
    exception.parameters[1] = row.address;
    EXPECT_EQ(exception_string(exception), row.string);
  }
}

TEST_F(ExceptionFilter, WithoutTheTextModuleNamesTheCode) {
  EXPECT_EQ(filter(kAccessViolation), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes, (Boxes{{"exception code: 0xC0000005", 0x2030}}));
}

TEST_F(ExceptionFilter, PassesOnWhatSoftwareHasDefined) {
  for (const uint32_t code : {0xE06D7363u, 0x20474343u, 0x20000000u, 0xE0000001u}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(filter(code), FilterResult::continue_search);
    EXPECT_EQ(filter(code, kNonContinuable), FilterResult::continue_search);
  }
  EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ExceptionFilter, ShowsWhatSoftwareHasDefinedOnTheLastChance) {
  EXPECT_EQ(filter(0xE06D7363, kLastChance | kNonContinuable), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes, (Boxes{{"exception code: 0xE06D7363", 0x2030}}));
}

TEST_F(ExceptionFilter, GoesOnAfterSuccessAndInformation) {
  for (const uint32_t code : {0x00000001u, 0x40010006u, 0x5FFFFFFFu}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(filter(code), FilterResult::continue_execution);
  }
  EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ExceptionFilter, ShowsInformationThatCannotBeGoneOnFrom) {
  EXPECT_EQ(filter(0x40010006, kNonContinuable), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes.size(), 1u);
}

TEST_F(ExceptionFilter, PassesOnWarnings) {
  for (const uint32_t code : {0x80000001u, 0x80000003u, 0x9FFFFFFFu}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(filter(code), FilterResult::continue_search);
    EXPECT_EQ(filter(code, kNonContinuable), FilterResult::continue_search);
  }
  EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ExceptionFilter, AsksWhetherToGoOnAfterAFloatingPointException) {
  for (uint32_t code = 0xC000008D; code <= 0xC0000093; ++code) {
    SCOPED_TRACE(code);
    FakeServices fake;
    EXPECT_EQ(filter_exception(exception_of(code, 0, code), fake),
              FilterResult::continue_execution);
    EXPECT_EQ(fake.cleared, 1);
    ASSERT_EQ(fake.boxes.size(), 1u);
    EXPECT_EQ(fake.boxes[0].text,
              String::formatted("exception code: 0x%08X - Continue execution?", code).c_str());
    EXPECT_EQ(fake.boxes[0].flags, 0x2031u);
  }
}

TEST_F(ExceptionFilter, ClearsTheFloatingPointUnitForNothingElse) {
  for (const uint32_t code : {0xC000008Cu, 0xC0000094u, kAccessViolation}) {
    SCOPED_TRACE(code);
    filter(code);
    EXPECT_EQ(services.cleared, 0);
  }
}

TEST_F(ExceptionFilter, OnlyShowsAFloatingPointExceptionThatCannotBeGoneOnFrom) {
  EXPECT_EQ(filter(kFloatDivision, kNonContinuable), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes, (Boxes{{"exception code: 0xC000008E", 0x2030}}));
}

TEST_F(ExceptionFilter, TakesTheQuestionFromTheTextModule) {
  TestCoreModule module;
  module.strings = {{265, "Divided by zero."}, {281, " Go on?"}};
  filter(kFloatDivision);
  EXPECT_EQ(services.boxes, (Boxes{{"Divided by zero. Go on?", 0x2031}}));
}

TEST_F(ExceptionFilter, CancelExecutesTheHandler) {
  services.answer = kCancel;
  EXPECT_EQ(filter(kFloatDivision), FilterResult::execute_handler);
}

TEST_F(ExceptionFilter, AddressAnsweredWithOkGoesOnWithoutABox) {
  EXPECT_EQ(filter(kFloatDivision), FilterResult::continue_execution);
  services.answer = kCancel;
  EXPECT_EQ(filter(kFloatDivision), FilterResult::continue_execution);
  EXPECT_EQ(services.boxes.size(), 1u);
  EXPECT_EQ(services.cleared, 2);
}

TEST_F(ExceptionFilter, AddressAnsweredWithCancelAsksAgain) {
  services.answer = kCancel;
  EXPECT_EQ(filter(kFloatDivision), FilterResult::execute_handler);
  services.answer = kOk;
  EXPECT_EQ(filter(kFloatDivision), FilterResult::continue_execution);
  EXPECT_EQ(services.boxes.size(), 2u);
  // The newer answer has replaced the older.
  EXPECT_EQ(filter(kFloatDivision), FilterResult::continue_execution);
  EXPECT_EQ(services.boxes.size(), 2u);
}

TEST_F(ExceptionFilter, RemembersEachAddressByItself) {
  filter(kFloatDivision, 0, 0x401000);
  filter(kFloatDivision, 0, 0x402000);
  EXPECT_EQ(services.boxes.size(), 2u);
  filter(kFloatDivision, 0, 0x401000);
  filter(kFloatDivision, 0, 0x402000);
  EXPECT_EQ(services.boxes.size(), 2u);
}

TEST_F(ExceptionFilter, AnswersCountForEveryThread) {
  filter(kFloatDivision);
  std::thread([this] {
    EXPECT_EQ(filter(kFloatDivision), FilterResult::continue_execution);
  }).join();
  EXPECT_EQ(services.boxes.size(), 1u);
}

TEST_F(ExceptionFilter, RemembersNothingOfWhatIsOnlyShown) {
  EXPECT_EQ(filter(kAccessViolation), FilterResult::execute_handler);
  EXPECT_EQ(filter(kAccessViolation), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes.size(), 2u);
}

TEST_F(ExceptionFilter, SkipsTheInstructionWhoseLengthIsKnown) {
  services.length = 3;
  EXPECT_EQ(filter(kAccessViolation, 0, 0x401234), FilterResult::continue_execution);
  EXPECT_EQ(services.asked_addresses, (std::vector<uintptr_t>{0x401234}));
  EXPECT_EQ(services.skipped, 3);
  EXPECT_EQ(services.boxes, (Boxes{{"exception code: 0xC0000005 - Continue execution?", 0x2031}}));
}

TEST_F(ExceptionFilter, AccessViolationAnsweredWithOkGoesOnWithoutABox) {
  services.length = 2;
  filter(kAccessViolation);
  EXPECT_EQ(filter(kAccessViolation), FilterResult::continue_execution);
  EXPECT_EQ(services.boxes.size(), 1u);
  EXPECT_EQ(services.skipped, 4);
}

TEST_F(ExceptionFilter, SkipsNothingWithoutALength) {
  for (const int length : {0, -1}) {
    SCOPED_TRACE(length);
    services.length = length;
    EXPECT_EQ(filter(kAccessViolation), FilterResult::execute_handler);
    EXPECT_EQ(services.skipped, 0);
  }
}

TEST_F(ExceptionFilter, SkippedInstructionThatCannotBeGoneOnFromIsOnlyShown) {
  services.length = 2;
  EXPECT_EQ(filter(kAccessViolation, kNonContinuable), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes[0].flags, 0x2030u);
}

TEST_F(ExceptionFilter, EndsTheProcessDuringShutDownWithoutABox) {
  const TestShutdown shutdown;
  filter(kAccessViolation);
  EXPECT_EQ(services.exit_codes, (std::vector<int>{-1}));
  EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ExceptionFilter, GoesOnDuringShutDownWhereItCan) {
  const TestShutdown shutdown;
  EXPECT_EQ(filter(kFloatDivision), FilterResult::continue_execution);
  EXPECT_TRUE(services.boxes.empty());
  EXPECT_TRUE(services.exit_codes.empty());
}

/// With `depth` reports in progress already.
FilterResult filter_inside(int depth, uint32_t code, FakeServices& services) {
  if (depth == 0) return filter_exception(exception_of(code), services);
  const ReportScope scope;
  return filter_inside(depth - 1, code, services);
}

TEST_F(ExceptionFilter, SaysThatAReportHasFailed) {
  EXPECT_EQ(filter_inside(1, kStackOverflow, services), FilterResult::execute_handler);
  EXPECT_EQ(services.boxes, (Boxes{{"An uncontinuable exception occured\n"
                                    "while processing an previous exception!",
                                    0x1030}}));
  EXPECT_TRUE(services.waits.empty());
}

TEST_F(ExceptionFilter, TakesTheWordsForAFailedReportFromTheTextModule) {
  TestCoreModule module;
  module.strings = {{280, "once more"}, {274, "stack"}};
  filter_inside(1, kStackOverflow, services);
  EXPECT_EQ(services.boxes, (Boxes{{"once more", 0x1030}}));
}

TEST_F(ExceptionFilter, WaitsAndEndsTheProcessWhenTheSecondReportHasFailedToo) {
  filter_inside(2, kAccessViolation, services);
  EXPECT_EQ(services.waits, (std::vector<uint32_t>{15000}));
  EXPECT_EQ(services.exit_codes, (std::vector<int>{-1}));
  EXPECT_TRUE(services.boxes.empty());
}

TEST_F(ExceptionFilter, EndsTheProcessAtOnceWhenItComesWorse) {
  for (const int depth : {3, 4}) {
    SCOPED_TRACE(depth);
    FakeServices fake;
    filter_inside(depth, kAccessViolation, fake);
    EXPECT_TRUE(fake.waits.empty());
    EXPECT_EQ(fake.exit_codes, (std::vector<int>{-1}));
    EXPECT_TRUE(fake.boxes.empty());
  }
}

TEST_F(ExceptionFilter, WaitsShortlyForEachRetryThatTheThreadHasLeft) {
  filter_retries().retries_left = 2;
  EXPECT_EQ(filter_inside(2, kAccessViolation, services), FilterResult::execute_handler);
  EXPECT_EQ(filter_inside(3, kAccessViolation, services), FilterResult::execute_handler);
  EXPECT_EQ(services.waits, (std::vector<uint32_t>{3000, 3000}));
  EXPECT_EQ(filter_retries().retries_left, 0);
  EXPECT_EQ(filter_retries().retries_done, 2);
  EXPECT_TRUE(services.exit_codes.empty());
  filter_inside(3, kAccessViolation, services);
  EXPECT_EQ(services.exit_codes, (std::vector<int>{-1}));
}

TEST_F(ExceptionFilter, RetriesBelongToTheThread) {
  filter_retries().retries_left = 1;
  std::thread([this] { filter_inside(3, kAccessViolation, services); }).join();
  EXPECT_EQ(services.exit_codes, (std::vector<int>{-1}));
  EXPECT_EQ(filter_retries().retries_left, 1);
}

TEST_F(ExceptionFilter, FirstFailureOfAReportNeedsNoRetry) {
  filter_retries().retries_left = 1;
  filter_inside(1, kAccessViolation, services);
  EXPECT_EQ(filter_retries().retries_left, 1);
}

TEST_F(ExceptionFilter, GoesOnInsideReportsWhereItCan) {
  for (const int depth : {1, 2, 3}) {
    SCOPED_TRACE(depth);
    EXPECT_EQ(filter_inside(depth, kFloatDivision, services), FilterResult::continue_execution);
  }
  EXPECT_TRUE(services.boxes.empty());
  EXPECT_TRUE(services.waits.empty());
}

TEST_F(ExceptionFilter, CountsAsAReportWhileItsBoxIsOpen) {
  const TestReports reports;
  services.while_open = [] { report_exception(UserException("dropped"), nullptr); };
  filter(kAccessViolation);
  EXPECT_TRUE(reports.shown.empty());
  report_exception(UserException("shown"), nullptr);
  EXPECT_EQ(reports.shown.size(), 1u) << "and no longer";
}

TEST_F(ExceptionFilter, ExceptionInsideTheBoxOfAReportIsTheSecondFailure) {
  TestReports reports;
  reports.while_open = [this] { filter(kAccessViolation); };
  report_exception(Exception(), nullptr);
  ASSERT_EQ(services.boxes.size(), 1u);
  EXPECT_EQ(services.boxes[0].flags, 0x1030u);
}

TEST_F(ExceptionFilter, ExceptionOfAnotherThreadDuringABoxIsTheSecondFailure) {
  FakeServices other;
  services.while_open = [&] {
    std::thread([&] { filter_exception(exception_of(kAccessViolation), other); }).join();
  };
  filter(kAccessViolation);
  EXPECT_EQ(services.boxes.size(), 1u);
  ASSERT_EQ(other.boxes.size(), 1u);
  EXPECT_EQ(other.boxes[0].flags, 0x1030u);
}

TEST_F(ExceptionFilter, LeavesTheLockFreeWhileItsBoxIsOpen) {
  bool entered = false;
  services.while_open = [&] {
    std::thread([&] {
      entered = report_lock().try_enter();
      if (entered) report_lock().leave();
    }).join();
  };
  filter(kAccessViolation);
  EXPECT_TRUE(entered);
}

TEST_F(ExceptionFilter, FailureOfItsOwnExecutesTheHandlerAndEndsTheReport) {
  services.while_open = [] { throw std::bad_alloc(); };
  EXPECT_EQ(filter(kAccessViolation), FilterResult::execute_handler);
  services.while_open = {};
  filter(kAccessViolation);
  EXPECT_EQ(services.boxes.back().flags, 0x2030u) << "no report is open any more";
}

}  // namespace
}  // namespace ORLO
