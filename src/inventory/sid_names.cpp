#include "inventory/sid_names.h"

String SidNameCache::SidToUserName(const String& sidText) {
  if (sidText.empty()) return sidText;
  const auto known = names_.find(sidText);
  if (known != names_.end()) return known->second;
  const auto found = accounts_.find(sidText.c_str());
  if (!found) return sidText;
  return names_[sidText] = String::formatted("%s\\%s", found->domain, found->account);
}
