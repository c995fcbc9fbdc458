#include "platform/system_version.h"

#include <gtest/gtest.h>

#include <windows.h>

TEST(SystemVersionOfTheTarget, IsThatOfTheLineOfWindowsNtThatTheProgramNeeds) {
  const SystemVersion version = system_version();
  EXPECT_EQ(version.platform, SystemVersion::kWindowsNt);
  EXPECT_EQ(version.major, LOBYTE(LOWORD(GetVersion())));
  EXPECT_EQ(version.minor, HIBYTE(LOWORD(GetVersion())));
  EXPECT_EQ(version.build, HIWORD(GetVersion()));
}
