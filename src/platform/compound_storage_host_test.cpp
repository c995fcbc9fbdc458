#include <gtest/gtest.h>

#include "platform/compound_storage.h"

namespace {

TEST(HostStorage, CreatesNothing) {
  StorageStatus status = 0;
  EXPECT_EQ(make_system_storage()->create(u"a.xls", status), nullptr);
  EXPECT_LT(status, 0);
}

}  // namespace
