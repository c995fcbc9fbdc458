// Accounts in memory, for tests and for the build machine.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/accounts.h"

/// Knows whom it has been told of, by the very text of the identifier. Belongs to one thread.
class MemoryAccounts : public Accounts {
 public:
  void add(const std::string& sid_text, const std::string& domain, const std::string& account);
  void remove(const std::string& sid_text);

  /// The texts asked for so far; null is one without characters.
  const std::vector<std::string>& calls() const noexcept { return calls_; }

  std::optional<AccountName> find(const char* sid_text) override;

 private:
  std::map<std::string, AccountName> names_;
  std::vector<std::string> calls_;
};
