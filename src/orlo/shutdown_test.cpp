#include "orlo/shutdown.h"

#include <gtest/gtest.h>

#include "orlo/com_objects.h"
#include "orlo/report.h"

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
