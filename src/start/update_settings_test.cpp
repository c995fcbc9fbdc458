#include "start/update_settings.h"

#include <gtest/gtest.h>

#include <string>

#include "start/program_version.h"

namespace {

const SystemVersion kSystem{SystemVersion::kWindowsNt, 6, 1, 7601};

TEST(UpdateSettings, TellServersTheProgramAndItsVersion) {
  const UpdateSettings settings = update_settings("http://a.example/pad.xml", kSystem, false);
  EXPECT_STREQ(settings.appName.c_str(), "zolvane");
  EXPECT_STREQ(settings.descriptionUrl.c_str(), "http://a.example/pad.xml");
  EXPECT_STREQ(settings.currentVersion.c_str(), kProgramVersion);
  EXPECT_EQ(settings.agent.c_str(), std::string("zolvane ") + kProgramVersion);
  EXPECT_STREQ(settings.registryPath.c_str(), "Software\\Quillmere\\Zolvane");
}

TEST(UpdateSettings, NameTheSystemByMajorMinorAndBuildNumber) {
  EXPECT_STREQ(update_settings("", kSystem, false).systemId.c_str(), "WIN6.1.7601");
  EXPECT_STREQ(update_settings("", {}, false).systemId.c_str(), "WIN0.0.0");
}

TEST(UpdateSettings, LimitTheCheckToOnceADayUnlessTheRunKeepsNothing) {
  EXPECT_TRUE(update_settings("", kSystem, false).limitToDaily);
  EXPECT_FALSE(update_settings("", kSystem, true).limitToDaily);
}

}  // namespace
