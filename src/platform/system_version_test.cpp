#include "platform/system_version.h"

#include <gtest/gtest.h>

TEST(SystemVersion, IsAtLeast6ForTheLineOfWindowsNtAlone) {
  const struct {
    SystemVersion version;
    bool expected;
  } cases[] = {
      {{2, 5, 0, 0}, false}, {{2, 6, 0, 0}, true},  {{2, 10, 0, 0}, true}, {{2, 0, 0, 0}, false},
      {{1, 6, 0, 0}, false}, {{3, 6, 0, 0}, false}, {{0, 6, 0, 0}, false}, {{}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.version.platform) + "/" + std::to_string(c.version.major));
    EXPECT_EQ(c.version.at_least_nt6(), c.expected);
  }
}
