#include "platform/accounts.h"

#include <windows.h>

#include <sddl.h>

#include <cstring>

#include "orlo/owned_handle.h"

namespace {

constexpr DWORD kNameRoom = 2048;
/// Longer than any identifier's text; nobody is known by a longer one. Not every system looks at
/// the count of an identifier's parts.
constexpr size_t kLongestSidText = 256;

struct SidTraits {
  using Handle = PSID;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle sid) noexcept { LocalFree(sid); }
};
using OwnedSid = ORLO::OwnedHandle<SidTraits>;

/// Null if the text isn't one of an identifier.
OwnedSid sid_from_text(const char* text) {
  if (text == nullptr || std::strlen(text) > kLongestSidText) return OwnedSid();
  PSID found = nullptr;
  if (ConvertStringSidToSidA(text, &found) == FALSE) return OwnedSid();
  return OwnedSid(found);
}

class SystemAccounts final : public Accounts {
 public:
  std::optional<AccountName> find(const char* sid_text) override {
    const OwnedSid sid = sid_from_text(sid_text);
    if (!sid) return std::nullopt;
    char account[kNameRoom] = "";
    char domain[kNameRoom] = "";
    DWORD account_size = kNameRoom;
    DWORD domain_size = kNameRoom;
    SID_NAME_USE use = SidTypeUnknown;
    if (LookupAccountSidA(nullptr, sid.get(), account, &account_size, domain, &domain_size, &use) ==
        FALSE) {
      return std::nullopt;
    }
    return AccountName{domain, account};
  }
};

}  // namespace

std::unique_ptr<Accounts> make_system_accounts() {
  return std::make_unique<SystemAccounts>();
}
