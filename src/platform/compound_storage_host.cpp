#include "platform/compound_storage.h"

namespace {

/// E_NOTIMPL: a build machine has no such files.
constexpr auto kNotThere = static_cast<StorageStatus>(0x80004001);

class NoStorage final : public CompoundStorage {
 public:
  std::unique_ptr<CompoundFile> create(const char16_t* /*path*/, StorageStatus& status) override {
    status = kNotThere;
    return nullptr;
  }
};

}  // namespace

std::unique_ptr<CompoundStorage> make_system_storage() {
  return std::make_unique<NoStorage>();
}
