#include "platform/memory_accounts.h"

std::unique_ptr<Accounts> make_system_accounts() {
  return std::make_unique<MemoryAccounts>();
}
