#include "inventory/sid_names.h"

#include <gtest/gtest.h>

#include "platform/memory_accounts.h"

namespace {

class SidNameCacheTest : public testing::Test {
 protected:
  std::string name(const std::string& sid) { return names_.SidToUserName(sid).c_str(); }

  MemoryAccounts accounts_;
  SidNameCache names_{accounts_};
};

TEST_F(SidNameCacheTest, JoinsDomainAndAccount) {
  accounts_.add("S-1-5-18", "NT AUTHORITY", "SYSTEM");
  accounts_.add("S-1-1-0", "", "Everyone");
  accounts_.add("S-1-2-0", "50%s", "100%");
  EXPECT_EQ(name("S-1-5-18"), "NT AUTHORITY\\SYSTEM");
  EXPECT_EQ(name("S-1-1-0"), "\\Everyone");
  EXPECT_EQ(name("S-1-2-0"), "50%s\\100%");
}

TEST_F(SidNameCacheTest, AnEmptyTextIsNeverLookedUp) {
  accounts_.add("", "no", "body");
  EXPECT_EQ(name(""), "");
  EXPECT_TRUE(accounts_.calls().empty());
}

TEST_F(SidNameCacheTest, ANameIsLookedUpOnce) {
  accounts_.add("S-1-5-18", "NT AUTHORITY", "SYSTEM");
  name("S-1-5-18");
  accounts_.remove("S-1-5-18");
  EXPECT_EQ(name("S-1-5-18"), "NT AUTHORITY\\SYSTEM");
  EXPECT_EQ(accounts_.calls().size(), 1u);
}

TEST_F(SidNameCacheTest, AFailedLookupIsTriedAgain) {
  EXPECT_EQ(name("S-1-5-21-1"), "S-1-5-21-1");
  EXPECT_EQ(name("S-1-5-21-1"), "S-1-5-21-1");
  EXPECT_EQ(accounts_.calls().size(), 2u);
  accounts_.add("S-1-5-21-1", "HOME", "ann");
  EXPECT_EQ(name("S-1-5-21-1"), "HOME\\ann");
}

TEST_F(SidNameCacheTest, AnUnresolvableSidIsShownInItsTextForm) {
  for (const std::string& text :
       {std::string("S-1-5-21-1-2-3-1000"), std::string("S-1-"), std::string("ann"),
        std::string("%s%n"), std::string("S-1-5-").append(2048, '1')}) {
    EXPECT_EQ(name(text), text);
  }
}

TEST_F(SidNameCacheTest, TellsIdentifiersThatBeginAlikeApart) {
  accounts_.add("S-1-5-2", "a", "b");
  accounts_.add("S-1-5-20", "c", "d");
  EXPECT_EQ(name("S-1-5-2"), "a\\b");
  EXPECT_EQ(name("S-1-5-20"), "c\\d");
  EXPECT_EQ(name("S-1-5-2"), "a\\b");
}

}  // namespace
