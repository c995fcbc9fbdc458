#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "orlo/locale.h"

namespace ORLO {
namespace {

const SystemTime kAfternoon = {2009, 3, 0, 5, 13, 5, 7, 0};

class StandInLocale : public testing::Test {
 protected:
  StandInLocale() {
    const char* const value = std::getenv("LC_ALL");
    was_set_ = value != nullptr;
    if (was_set_) old_value_ = value;
  }
  ~StandInLocale() override {
    if (was_set_) {
      setenv("LC_ALL", old_value_.c_str(), 1);
    } else {
      unsetenv("LC_ALL");
    }
  }

 private:
  bool was_set_ = false;
  std::string old_value_;
};

TEST_F(StandInLocale, IsGermanWhereTheEnvironmentSaysSo) {
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  EXPECT_EQ(system_locale().date_text(kAfternoon, nullptr), "05.03.2009");
  EXPECT_EQ(system_locale().time_text(kAfternoon, nullptr), "13:05:07");
  EXPECT_EQ(system_locale().date_text(kAfternoon, "ddd dddd MMM MMMM"),
            "Do Donnerstag Mrz M\xe4rz");
  EXPECT_EQ(system_locale().time_text(kAfternoon, "h tt"), "1 ");
}

TEST_F(StandInLocale, IsBritishOtherwise) {
  for (const char* name : {"en_GB.UTF-8", "C", ""}) {
    setenv("LC_ALL", name, 1);
    EXPECT_EQ(system_locale().date_text(kAfternoon, nullptr), "05/03/2009");
  }
  unsetenv("LC_ALL");
  EXPECT_EQ(system_locale().date_text(kAfternoon, nullptr), "05/03/2009");
}

}  // namespace
}  // namespace ORLO
