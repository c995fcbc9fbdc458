// The seam to the names of the system's accounts.
#pragma once

#include <memory>
#include <optional>

#include "orlo/rstring.h"

struct AccountName {
  String domain;
  String account;
};

class Accounts {
 public:
  virtual ~Accounts() = default;
  /// Whose security identifier has this text form ("S-1-5-18"): ConvertStringSidToSidA, and
  /// LookupAccountSidA with buffers of 2,048 characters. None if either fails.
  virtual std::optional<AccountName> find(const char* sid_text) = 0;
};

/// The accounts that this system knows.
std::unique_ptr<Accounts> make_system_accounts();
