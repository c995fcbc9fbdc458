// What the contract of the accounts is tested on: those of a system, or some in memory.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/accounts.h"

struct AccountsMaker {
  const char* name;
  std::function<std::unique_ptr<Accounts>()> make;
};

inline void PrintTo(const AccountsMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of Accounts that every implementation keeps. It knows the system's own account and
/// the group of its administrators.
class AccountsContract : public ::testing::TestWithParam<AccountsMaker> {
 protected:
  AccountsContract() : accounts_(GetParam().make()) {}

  /// "DOMAIN\account", or "-" where nobody is found.
  std::string find(const std::string& sid_text) {
    const auto name = accounts_->find(sid_text.c_str());
    if (!name) return "-";
    return std::string(name->domain.c_str()).append("\\").append(name->account.c_str());
  }
  Accounts& accounts() { return *accounts_; }

 private:
  const std::unique_ptr<Accounts> accounts_;
};
