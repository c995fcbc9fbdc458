#include "platform/compound_storage.h"

#include <windows.h>
// These need what windows.h brings.
#include <objbase.h>
#include <objidl.h>

#include <limits>
#include <utility>

#include "platform/owned_com.h"

namespace {

constexpr DWORD kOpen = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kCreate = kOpen | STGM_CREATE;

const wchar_t* wide(const char16_t* text) {
  return reinterpret_cast<const wchar_t*>(text);
}

class SystemStream final : public StorageStream {
 public:
  explicit SystemStream(OwnedCom<IStream> stream) : stream_(std::move(stream)) {}

  StorageStatus write(const void* data, size_t size) override {
    if (size > std::numeric_limits<ULONG>::max()) return STG_E_MEDIUMFULL;
    const auto length = static_cast<ULONG>(size);
    ULONG written = 0;
    const HRESULT status = stream_.get()->Write(data, length, &written);
    if (FAILED(status)) return status;
    return written == length ? 0 : STG_E_MEDIUMFULL;
  }

 private:
  OwnedCom<IStream> stream_;
};

class SystemCompoundFile final : public CompoundFile {
 public:
  explicit SystemCompoundFile(OwnedCom<IStorage> storage) : storage_(std::move(storage)) {}

  StorageStatus create_stream(const char16_t* name) override {
    IStream* made = nullptr;
    const HRESULT status = storage_.get()->CreateStream(wide(name), kCreate, 0, 0, &made);
    const OwnedCom<IStream> closed_at_once(made);
    return FAILED(status) ? status : 0;
  }

  std::unique_ptr<StorageStream> open_stream(const char16_t* name, StorageStatus& status) override {
    IStream* opened = nullptr;
    status = storage_.get()->OpenStream(wide(name), nullptr, kOpen, 0, &opened);
    OwnedCom<IStream> stream(opened);
    if (FAILED(status)) return nullptr;
    status = 0;
    return std::make_unique<SystemStream>(std::move(stream));
  }

  StorageStatus commit() override {
    const HRESULT status = storage_.get()->Commit(STGC_DEFAULT);
    return FAILED(status) ? status : 0;
  }

 private:
  OwnedCom<IStorage> storage_;
};

class SystemStorage final : public CompoundStorage {
 public:
  std::unique_ptr<CompoundFile> create(const char16_t* path, StorageStatus& status) override {
    IStorage* made = nullptr;
    status = StgCreateDocfile(wide(path), kCreate, 0, &made);
    OwnedCom<IStorage> storage(made);
    if (FAILED(status)) return nullptr;
    status = 0;
    return std::make_unique<SystemCompoundFile>(std::move(storage));
  }
};

}  // namespace

std::unique_ptr<CompoundStorage> make_system_storage() {
  return std::make_unique<SystemStorage>();
}
