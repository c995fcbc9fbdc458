// The contract of accounts_contract_test.cpp on the accounts of the system, and that nothing is
// left open by a question.
#include "orlo/owned_handle.h"
#include "platform/accounts_test_support.h"

INSTANTIATE_TEST_SUITE_P(System, AccountsContract,
                         ::testing::Values(AccountsMaker{"Own", &make_system_accounts}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SystemAccounts, LeaveNoIdentifierOfAQuestionOpen) {
  const auto accounts = make_system_accounts();
  const int before = ORLO::live_handles();
  EXPECT_TRUE(accounts->find("S-1-5-18"));
  EXPECT_FALSE(accounts->find("S-1-5-21-1-2-3-4444"));
  EXPECT_FALSE(accounts->find("S-1-"));
  EXPECT_EQ(ORLO::live_handles(), before);
}
