// Names of the accounts behind security identifiers.
#pragma once

#include <map>

#include "inventory/table.h"
#include "platform/accounts.h"

/// Belongs to one thread.
class SidNameCache {
 public:
  explicit SidNameCache(Accounts& accounts) : accounts_(accounts) {}

  /// "DOMAIN\account", or the text itself where nobody is known by it. A name that was found is
  /// kept; what wasn't is looked up anew each time.
  String SidToUserName(const String& sidText);

 private:
  Accounts& accounts_;
  std::map<String, String, ByteOrder> names_;
};
