#include "orlo/report.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <thread>

#include "orlo/assertion.h"
#include "orlo/core_module_test_support.h"
#include "orlo/report_state.h"
#include "orlo/report_test_support.h"

namespace ORLO {
namespace {

using Shown = std::vector<TestReports::Report>;

TEST(Report, OfAnExceptionTellsWhatFailedDuringWhatAndWhy) {
  const TestReports reports;
  const ExceptionContext context("reading");
  report_exception(UserException("no room"), nullptr);
  EXPECT_EQ(reports.shown,
            (Shown{{"Exception", "Ein Fehler trat auf w\xe4hrend reading:\nno room"}}));
}

TEST(Report, OfAStandardExceptionHasItsText) {
  const TestReports reports;
  report_std_exception(std::runtime_error("out of range"), nullptr);
  EXPECT_EQ(reports.shown, (Shown{{"Exception", "An exception occured:\nout of range\n"}}));
}

TEST(Report, OfAStandardExceptionTakesItsFormatFromTheTextModule) {
  const TestReports reports;
  TestCoreModule module;
  module.strings = {{286, "library: %s"}};
  report_std_exception(std::runtime_error("out of range"), nullptr);
  EXPECT_EQ(reports.shown, (Shown{{"Exception", "library: out of range"}}));
}

TEST(Report, OfAComErrorHasACaptionOfItsOwn) {
  const TestReports reports;
  report_com_error(ComError(-1), nullptr);
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(reports.shown[0].caption, "COM Exception");
  EXPECT_EQ(reports.shown[0].text, com_error_text(ComError(-1)).c_str());
}

void report_each_kind() {
  report_exception(UserException("second"), nullptr);
  report_com_error(ComError(-1), nullptr);
  report_std_exception(std::runtime_error("second"), nullptr);
  EXPECT_FALSE(report_assertion("second", "test", 1));
}

TEST(Report, DuringAnotherIsDropped) {
  TestReports reports;
  reports.while_open = &report_each_kind;
  report_exception(UserException("first"), nullptr);
  report_std_exception(std::runtime_error("first"), nullptr);
  EXPECT_EQ(reports.shown.size(), 2u);
}

TEST(Report, DuringAnotherOnAnyThreadIsDroppedAtOnce) {
  TestReports reports;
  // Joined while the first is still open: the second one waits for nothing.
  reports.while_open = [] { std::thread(&report_each_kind).join(); };
  report_exception(UserException("first"), nullptr);
  EXPECT_EQ(reports.shown.size(), 1u);
}

TEST(Report, LeavesTheLockFreeWhileItIsOpen) {
  TestReports reports;
  bool entered = false;
  reports.while_open = [&] {
    std::thread([&] {
      entered = report_lock().try_enter();
      if (entered) report_lock().leave();
    }).join();
  };
  report_exception(Exception(), nullptr);
  EXPECT_TRUE(entered);
}

TEST(Report, AfterAnotherIsShown) {
  const TestReports reports;
  report_exception(UserException("first"), nullptr);
  report_exception(UserException("second"), nullptr);
  EXPECT_EQ(reports.shown.size(), 2u);
}

TEST(Report, IsSilentDuringShutDown) {
  const TestReports reports;
  {
    const TestShutdown shutdown;
    report_each_kind();
  }
  EXPECT_TRUE(reports.shown.empty());
  report_exception(Exception(), nullptr);
  EXPECT_EQ(reports.shown.size(), 1u) << "the shut-down was taken back";
}

struct Untellable : Exception {
  const char* what() const override { throw LWE(0xEEEEEEEE); }
};

struct Hopeless : Exception {
  const char* what() const override { throw std::bad_alloc(); }
};

TEST(Report, TellsWhyATextCannotBeHad) {
  const TestReports reports;
  report_exception(Untellable(), nullptr);
  EXPECT_EQ(reports.shown, (Shown{{"Exception", "unknown error 0xEEEEEEEE"}}));
}

TEST(Report, OfAFailureThatCannotBeToldIsGeneric) {
  const TestReports reports;
  report_exception(Hopeless(), nullptr);
  EXPECT_EQ(reports.shown, (Shown{{"Exception", "generic exception"}}));
  // It doesn't count as open any more.
  report_exception(Exception(), nullptr);
  EXPECT_EQ(reports.shown.size(), 2u);
}

class Assertion : public ::testing::Test {
 protected:
  Assertion() { forget_failed_assertions(); }
  TestReports reports;
};

TEST_F(Assertion, ThatHoldsSaysNothing) {
  EXPECT_TRUE(check_assertion(true, "a", "test", 1));
  EXPECT_TRUE(reports.shown.empty());
}

TEST_F(Assertion, ThatFailsIsReportedWithItsExpressionAndGoesOn) {
  EXPECT_FALSE(check_assertion(false, "!old_userdata", "controller", 55));
  EXPECT_EQ(reports.shown,
            (Shown{{"Exception", "Assertion failed: !old_userdata, file controller, line 55"}}));
}

TEST_F(Assertion, IsReportedOnceForEachExpression) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(check_assertion(false, "a", "test", 1));
    EXPECT_FALSE(check_assertion(false, "b", "test", 2));
    EXPECT_FALSE(check_assertion(false, "a", "other", 1));
  }
  EXPECT_EQ(reports.shown.size(), 3u);
}

TEST_F(Assertion, ThatFailsAgainBehindItsOwnReportSaysNothing) {
  reports.while_open = [] { check_assertion(false, "a", "test", 1); };
  check_assertion(false, "a", "test", 1);
  EXPECT_EQ(reports.shown.size(), 1u);
}

TEST_F(Assertion, WhoseReportWasDroppedIsReportedTheNextTime) {
  reports.while_open = [] { check_assertion(false, "a", "test", 1); };
  report_exception(Exception(), nullptr);
  reports.while_open = {};
  EXPECT_EQ(reports.shown.size(), 1u);
  check_assertion(false, "a", "test", 1);
  EXPECT_EQ(reports.shown.size(), 2u);
}

TEST_F(Assertion, IsUntoldInAScopeForItAndToldAfterIt) {
  {
    const UntoldAssertions outer;
    { const UntoldAssertions inner; }
    EXPECT_FALSE(check_assertion(false, "x", "test", 1));
  }
  EXPECT_TRUE(reports.shown.empty());
  EXPECT_FALSE(check_assertion(false, "x", "test", 1));
  EXPECT_EQ(reports.shown.size(), 1u);
}

TEST_F(Assertion, IsSilentDuringShutDown) {
  const TestShutdown shutdown;
  EXPECT_FALSE(check_assertion(false, "InShutDown==1", "shutdown", 1));
  EXPECT_TRUE(reports.shown.empty());
}

}  // namespace
}  // namespace ORLO
