#include "platform/host_name.h"

#include <gtest/gtest.h>

TEST(HostName, IsKnownAndHasNoDomain) {
  EXPECT_FALSE(host_name().empty());
  EXPECT_EQ(host_name(), host_name());
  EXPECT_EQ(host_name().find('\0'), std::string::npos);
}
