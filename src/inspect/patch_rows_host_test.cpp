#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "inspect/patch_bed_test_support.h"

// On a build machine the locale follows the environment, so that both languages can be had in one
// run.

namespace {

class PatchRowsByLocale : public PatchBedTest {
 protected:
  PatchRowsByLocale() {
    if (const char* const value = std::getenv("LC_ALL")) old_value_ = value;
  }
  ~PatchRowsByLocale() override { setenv("LC_ALL", old_value_.c_str(), 1); }

  static void use(const char* locale) { setenv("LC_ALL", locale, 1); }

 private:
  std::string old_value_;
};

using Order = std::vector<int>;

TEST_F(PatchRowsByLocale, ShowTheDateInIt) {
  add_all({"20110325"});
  use("de_DE.UTF-8");
  EXPECT_EQ(column(3), Texts{"25.03.2011"});
  use("en_GB.UTF-8");
  EXPECT_EQ(column(3), Texts{"25/03/2011"});
}

TEST_F(PatchRowsByLocale, ShowTheTimeOfDayAfterTheDate) {
  add_all({"25.03.2011 10:11:12"});
  use("de_DE.UTF-8");
  EXPECT_EQ(column(3), Texts{"25.03.2011 10:11"});
  use("en_GB.UTF-8");
  EXPECT_EQ(column(3), Texts{"25/03/2011 10:11"});
}

TEST_F(PatchRowsByLocale, StandInOrderWhereTheShownDateIsReadAsItIsMeant) {
  use("de_DE.UTF-8");
  EXPECT_EQ(order_of({"20110325", "20110113", "20110212"}), (Order{2, 3, 1}));
}

TEST_F(PatchRowsByLocale, FollowTheShownDateWhereItIsReadInAnotherWay) {
  use("en_GB.UTF-8");
  EXPECT_EQ(order_of({"20110102", "20110103"}), (Order{2, 1})) << "02/01 is read as 1 February";
  EXPECT_EQ(order_of({"20110201", "20110103"}), (Order{1, 2})) << "01/02 is read as 2 January";
  EXPECT_EQ(order_of({"20110112", "20110201"}), (Order{2, 1})) << "12/01 is read as 1 December";
}

TEST_F(PatchRowsByLocale, StopAtAShownDateThatIsNoDateWhenItIsRead) {
  use("en_GB.UTF-8");
  EXPECT_EQ(order_of({"20110325", "20100101"}), (Order{1, 2})) << "there is no 25th month";
  EXPECT_EQ(order_of({"20110325", ""}), (Order{2, 1})) << "it is a date all the same";
}

TEST_F(PatchRowsByLocale, AgreeWithAPlainListInBoth) {
  const Texts dates = {"20110325",
                       "20110113",
                       "",
                       "20110212",
                       "05.05.2011 10:15:00",
                       "rubbish",
                       "20100101",
                       "25.03.2011 10:11:12",
                       "20110325"};
  for (const char* locale : {"de_DE.UTF-8", "en_GB.UTF-8"}) {
    use(locale);
    EXPECT_EQ(order_of(dates), modelled_order(dates)) << locale;
  }
}

}  // namespace
