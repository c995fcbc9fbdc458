#include "platform/memory_accounts.h"

void MemoryAccounts::add(const std::string& sid_text, const std::string& domain,
                         const std::string& account) {
  names_[sid_text] = {domain, account};
}

void MemoryAccounts::remove(const std::string& sid_text) {
  names_.erase(sid_text);
}

std::optional<AccountName> MemoryAccounts::find(const char* sid_text) {
  const std::string& text = calls_.emplace_back(sid_text != nullptr ? sid_text : "");
  const auto found = names_.find(text);
  if (found == names_.end()) return std::nullopt;
  return found->second;
}
