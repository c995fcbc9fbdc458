#include "orlo/shutdown.h"

#include <gtest/gtest.h>

#include "orlo/assertion.h"
#include "orlo/com_objects.h"
#include "orlo/report_test_support.h"

namespace ORLO {
namespace {

class PrepareShutdown : public testing::Test {
 protected:
  ~PrepareShutdown() override {
    while (in_shutdown())
      take_back_shutdown();
  }
  ComObjects objects;
};

TEST_F(PrepareShutdown, BeginsTheShutDownAndSilencesReports) {
  int reports = 0;
  set_report_sink([&](const String&, const String&) { ++reports; });
  EXPECT_TRUE(prepare_shutdown(objects, nullptr));
  EXPECT_TRUE(in_shutdown());
  report_exception(UserException("too late"), nullptr);
  EXPECT_EQ(reports, 0);
  set_report_sink({});
}

TEST_F(PrepareShutdown, TellsOfAMainWindowThatStillExistsAndGoesOn) {
  forget_failed_assertions();
  TestReports reports;
  bool begun = false;
  reports.while_open = [&] { begun = in_shutdown(); };
  const int window = 0;
  EXPECT_TRUE(prepare_shutdown(objects, &window));
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_NE(reports.shown[0].text.find("!mainThread._hmainwnd"), std::string::npos);
  EXPECT_TRUE(begun) << "nothing else is told meanwhile";
  EXPECT_TRUE(in_shutdown());
}

TEST_F(PrepareShutdown, TellsOfASecondBeginAndBarsReportsAgain) {
  forget_failed_assertions();
  const TestReports reports;
  EXPECT_TRUE(prepare_shutdown(objects, nullptr));
  EXPECT_TRUE(reports.shown.empty()) << "there is nothing to tell of the first";
  EXPECT_TRUE(prepare_shutdown(objects, nullptr));
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_NE(reports.shown[0].text.find("InShutDown==1"), std::string::npos);
  report_exception(UserException("too late"), nullptr);
  EXPECT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(InShutDown, 2);
}

TEST_F(PrepareShutdown, SaysNothingOfTheMainWindowWhileAnObjectKeepsTheProgramGoing) {
  forget_failed_assertions();
  const TestReports reports;
  const int window = 0;
  objects.object_made();
  EXPECT_FALSE(prepare_shutdown(objects, &window));
  EXPECT_TRUE(reports.shown.empty());
}

TEST_F(PrepareShutdown, ASecondBeginThatIsTakenBackLeavesTheFirst) {
  const TestReports reports;
  EXPECT_TRUE(prepare_shutdown(objects, nullptr));
  objects.object_made();
  EXPECT_FALSE(prepare_shutdown(objects, nullptr));
  EXPECT_EQ(InShutDown, 1);
}

TEST_F(PrepareShutdown, LivingObjectsKeepTheProgramGoing) {
  objects.object_made();
  EXPECT_FALSE(prepare_shutdown(objects, nullptr));
  EXPECT_FALSE(in_shutdown());
  objects.object_gone();
  EXPECT_TRUE(prepare_shutdown(objects, nullptr));
}

TEST_F(PrepareShutdown, RegistrationIsRevokedOnceAndItsObjectGoesWithIt) {
  int revoked = 0;
  objects.object_made();
  objects.set_registered([&] {
    ++revoked;
    objects.object_gone();
  });
  EXPECT_TRUE(prepare_shutdown(objects, nullptr));
  EXPECT_EQ(revoked, 1);
  objects.revoke_registration();
  EXPECT_EQ(revoked, 1);
}

TEST_F(PrepareShutdown, ObjectInUseOutlivesTheRegistration) {
  objects.object_made();
  objects.object_made();
  objects.set_registered([&] { objects.object_gone(); });
  EXPECT_FALSE(prepare_shutdown(objects, nullptr));
  EXPECT_FALSE(in_shutdown());
}

TEST(ComObjects, AreInUseBeyondTheRegisteredOnesOnly) {
  ComObjects objects;
  int runs = 0;
  const auto count = [&] { ++runs; };
  EXPECT_FALSE(objects.while_in_use(count));
  objects.object_made();
  objects.set_registered([] {});
  EXPECT_FALSE(objects.while_in_use(count));
  objects.object_made();
  EXPECT_TRUE(objects.while_in_use(count));
  objects.object_gone();
  EXPECT_FALSE(objects.while_in_use(count));
  EXPECT_EQ(runs, 1);
}

TEST(ComObjects, CanBeCountedFromManyThreads) {
  ComObjects objects;
  const auto work = [&] {
    for (int i = 0; i < 1000; ++i) {
      objects.object_made();
      objects.while_in_use([] {});
      objects.object_gone();
    }
    return 0;
  };
  Thread first(work);
  Thread second(work);
  first.resume();
  second.resume();
  wait_for(first, kInfinite);
  wait_for(second, kInfinite);
  EXPECT_FALSE(objects.any_alive());
}

}  // namespace
}  // namespace ORLO
