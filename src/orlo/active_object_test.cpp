#include "orlo/active_object.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <vector>

#include "orlo/com_error.h"
#include "orlo/report.h"

namespace ORLO {
namespace {

class Worker : public ActiveFinisher {
 public:
  explicit Worker(std::function<int(Worker&)> work, Event* finish_event = nullptr)
      : ActiveFinisher("Worker", finish_event), work_(std::move(work)) {}
  ~Worker() override { stop(); }
  Event& signal() { return finish_signal(); }

 protected:
  int Run() override { return work_(*this); }

 private:
  std::function<int(Worker&)> work_;
};

int wait_for_signal(Worker& worker) {
  wait_for(worker.signal(), kInfinite);
  return 0;
}

/// Collects the reports of its scope instead of showing boxes.
class CollectedReports {
 public:
  CollectedReports() {
    set_report_sink([this](const String&, const String& text) { texts.push_back(text); });
  }
  ~CollectedReports() { set_report_sink({}); }
  std::vector<String> texts;
};

TEST(ActiveObject, RunsOnlyOnceResumed) {
  Event done;
  Worker worker([](Worker&) { return 7; }, &done);
  EXPECT_FALSE(worker.running());
  worker.resume();
  ASSERT_TRUE(wait_for(done, 10000));
  EXPECT_TRUE(worker.finished());
  EXPECT_EQ(worker.exit_code(), 7);
}

TEST(ActiveObject, NeverResumedNeverRuns) {
  bool ran = false;
  {
    Worker worker([&](Worker&) {
      ran = true;
      return 0;
    });
    worker.stop();
  }
  EXPECT_FALSE(ran);
}

TEST(ActiveObject, StopWakesAndJoins) {
  Worker worker(&wait_for_signal);
  worker.resume();
  EXPECT_TRUE(worker.stop());
  EXPECT_TRUE(worker.finished());
}

TEST(ActiveObject, StopTwiceIsHarmless) {
  Worker worker(&wait_for_signal);
  worker.resume();
  worker.stop();
  EXPECT_TRUE(worker.stop());
}

TEST(ActiveObject, StopFromItsOwnThreadDoesNotWait) {
  Worker worker([](Worker& self) {
    self.stop();
    return self.stop_requested() ? 3 : 4;
  });
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), 3);
}

TEST(ActiveObject, BreakExceptionEndsTheThreadSilently) {
  const CollectedReports reports;
  Worker worker([](Worker&) -> int { throw BreakException(); });
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), -1);
  EXPECT_TRUE(reports.texts.empty());
}

TEST(ActiveObject, FailureIsReportedOnceAndEndsWithMinusOne) {
  const CollectedReports reports;
  Worker worker([](Worker&) -> int { throw UserException("column not found"); });
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), -1);
  ASSERT_EQ(reports.texts.size(), 1u);
  EXPECT_STREQ(reports.texts[0].c_str(),
               "Ein Fehler trat auf w\xe4hrend -NO-CONTEXT-:\ncolumn not found");
}

TEST(ActiveObject, StandardExceptionIsReportedWithItsText) {
  const CollectedReports reports;
  Worker worker([](Worker&) -> int { throw std::runtime_error("bad luck"); });
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  ASSERT_EQ(reports.texts.size(), 1u);
  EXPECT_STREQ(reports.texts[0].c_str(), "An exception occured:\nbad luck\n");
}

TEST(ActiveObject, ComErrorIsReportedWithItsTexts) {
  const CollectedReports reports;
  Worker worker([](Worker&) -> int { throw ComError(-1, "Source", "Description"); });
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), -1);
  ASSERT_EQ(reports.texts.size(), 1u);
  EXPECT_STREQ(reports.texts[0].c_str(),
               com_error_text(ComError(-1, "Source", "Description")).c_str());
}

TEST(ActiveObject, UnknownExceptionIsReportedOnceAndEndsWithMinusOne) {
  const CollectedReports reports;
  Worker worker([](Worker&) -> int { throw 42; });
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), -1);
  ASSERT_EQ(reports.texts.size(), 1u);
  EXPECT_STREQ(reports.texts[0].c_str(),
               "Ein Fehler trat auf w\xe4hrend -NO-CONTEXT-:\ngeneric exception");
}

TEST(ActiveObject, FailedInitKeepsRunAndTheWordOfTheEndFromBeingCalled) {
  class Failing : public ActiveFinisher {
   public:
    explicit Failing(Event* finish_event) : ActiveFinisher("Failing", finish_event) {}
    ~Failing() override { stop(); }
    std::atomic<bool> ran{false};
    std::atomic<bool> told{false};

   protected:
    void Init() override { throw BreakException(); }
    int Run() override {
      ran = true;
      return 0;
    }
    void OnFinished(int exit_code) override {
      told = true;
      ActiveFinisher::OnFinished(exit_code);
    }
  };
  Event done;
  Failing worker(&done);
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_FALSE(worker.ran);
  EXPECT_FALSE(worker.told);
  EXPECT_FALSE(wait_for(done, 0));
  EXPECT_TRUE(worker.finished());
  EXPECT_EQ(worker.exit_code(), -1);
}

TEST(ActiveObject, StopWakesWhateverItsThreadWaitsFor) {
  Event ready;
  std::atomic<int> called{0};
  Worker worker([&](Worker&) {
    ThreadWake& wake = current_thread_wake();
    wake.wake_context = &called;
    wake.wake_function = [](void* context) { ++*static_cast<std::atomic<int>*>(context); };
    ready.set();
    const bool woken = wait_for(wake.wake_event, 10000);
    return woken ? wake.wake_count.load() : -2;
  });
  worker.resume();
  ASSERT_TRUE(wait_for(ready, 10000));
  worker.stop();
  EXPECT_EQ(worker.exit_code(), 1);
  EXPECT_EQ(called, 1);
  worker.stop();
  EXPECT_EQ(called, 1);
}

TEST(ActiveObject, RenewedRunsOnANewThread) {
  class Renewed : public ActiveFinisher {
   public:
    Renewed() : ActiveFinisher("Renewed") {}
    ~Renewed() override { stop(); }
    void again() {
      renew();
      EXPECT_FALSE(finished());
      EXPECT_EQ(exit_code(), -1);
      resume();
    }

   protected:
    int Run() override { return ++runs_; }

   private:
    int runs_ = 0;
  };
  Renewed worker;
  worker.resume();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), 1);
  worker.again();
  ASSERT_TRUE(wait_for(worker.thread(), 10000));
  EXPECT_EQ(worker.exit_code(), 2);
}

TEST(Report, SecondOneDuringTheFirstIsDropped) {
  int shown = 0;
  set_report_sink([&](const String&, const String&) {
    ++shown;
    report_exception(UserException("inner"), nullptr);
  });
  report_exception(UserException("outer"), nullptr);
  set_report_sink({});
  EXPECT_EQ(shown, 1);
}

TEST(WaitAny, GivesTheFirstSignalledItemAndResetsIt) {
  Event first;
  Event second;
  Waitable* items[] = {&first, &second};
  second.set();
  EXPECT_EQ(wait_any(items, 2, 0), 1);
  EXPECT_EQ(wait_any(items, 2, 0), kWaitTimeout);
  first.set();
  first.reset();
  EXPECT_EQ(wait_any(items, 2, 10), kWaitTimeout);
}

}  // namespace
}  // namespace ORLO
