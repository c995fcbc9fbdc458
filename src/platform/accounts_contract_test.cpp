// What Accounts promises, tested on the accounts in memory here and on the system's own in
// accounts_contract_win_test.cpp.
#include "platform/accounts_test_support.h"
#include "platform/memory_accounts.h"

namespace {

std::unique_ptr<Accounts> make_memory_accounts() {
  auto accounts = std::make_unique<MemoryAccounts>();
  accounts->add("S-1-5-18", "NT AUTHORITY", "SYSTEM");
  accounts->add("S-1-5-32-544", "BUILTIN", "Administrators");
  return accounts;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, AccountsContract,
                         ::testing::Values(AccountsMaker{"Own", &make_memory_accounts}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(AccountsContract, NamesTheWellKnownAccounts) {
  EXPECT_EQ(find("S-1-5-18"), "NT AUTHORITY\\SYSTEM");
  EXPECT_EQ(find("S-1-5-32-544"), "BUILTIN\\Administrators");
}

TEST_P(AccountsContract, NamesAnAccountEachTimeItIsAskedFor) {
  for (int round = 0; round < 3; ++round)
    EXPECT_EQ(find("S-1-5-18"), "NT AUTHORITY\\SYSTEM");
}

TEST_P(AccountsContract, KnowsNobodyByAnIdentifierOfElsewhere) {
  EXPECT_EQ(find("S-1-5-21-1-2-3-4444"), "-");
  EXPECT_EQ(find("S-1-99-7"), "-");
}

TEST_P(AccountsContract, KnowsNobodyByAnEmptyText) {
  EXPECT_EQ(find(""), "-");
  EXPECT_FALSE(accounts().find(nullptr));
}

TEST_P(AccountsContract, KnowsNobodyByATextThatIsNoIdentifier) {
  for (const char* text :
       {" ", "S", "S-", "S-1", "S-1-", "S-1-5", "S-1-5-", "X-1-5-18", "-1-5-18", "S-1-5-18x",
        "S-1-5-x", "S-2-5-18", "S--1-5-18", "Administrators", "\xE4\xFF", "S-1-5-18 ",
        "S-1-5-99999999999999999999", "S-1-999999999999999999999-18"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(find(text), "-");
  }
}

TEST_P(AccountsContract, KnowsNobodyByATextOfMoreThanAnIdentifiersLength) {
  std::string parts = "S-1-5-21";
  while (parts.size() < 2048)
    parts.append("-4294967295");
  for (const std::string& text :
       {std::string(2048, 'S'), std::string(2048, '-'), parts, "S-1-5-" + std::string(2048, '0'),
        "S-1-5-" + std::string(2048, '0').append("18"), std::string(1 << 20, '1')}) {
    SCOPED_TRACE(text.substr(0, 30));
    EXPECT_EQ(find(text), "-");
  }
}

TEST_P(AccountsContract, KnowsNobodyByMorePartsThanAnIdentifierHas) {
  for (const int parts : {15, 16, 17, 40, 120}) {
    SCOPED_TRACE(parts);
    std::string text = "S-1-5-21";
    for (int i = 0; i < parts; ++i)
      text.append("-1");
    EXPECT_EQ(find(text), "-");
  }
}
