#include "orlo/core_module.h"

#include "orlo/locale.h"
#include "orlo/message_table.h"
#include "orlo/window_handles.h"

namespace ORLO {
namespace {

using OwnedModule = OwnedHandle<NullableHandleTraits<HMODULE, &FreeLibrary>>;

constexpr unsigned kStringsPerBlock = 16;

class LoadedCoreModule : public CoreModule {
 public:
  explicit LoadedCoreModule(OwnedModule module) noexcept : module_(std::move(module)) {}

  bool string(unsigned id, String& text) const override {
    const char16_t* wide = nullptr;
    // With no room for a copy the call gives a pointer into the module.
    const int length = LoadStringW(module_.get(), id, reinterpret_cast<wchar_t*>(&wide), 0);
    if (length <= 0 || wide == nullptr) return false;
    text = system_locale().narrow(wide, static_cast<size_t>(length));
    return true;
  }

  bool message(uint32_t code, String& text) const override {
    return message_text(module_.get(), code, text);
  }

  std::u16string wide_string(unsigned id, uint16_t language) const override {
    const HMODULE module = module_.get();
    const HRSRC found =
        FindResourceExW(module, MAKEINTRESOURCEW(6),  // RT_STRING, which is 8-bit in this build
                        MAKEINTRESOURCEW(id / kStringsPerBlock + 1), language);
    if (found == nullptr) return {};
    const HGLOBAL loaded = LoadResource(module, found);
    const auto* block =
        loaded == nullptr ? nullptr : static_cast<const char16_t*>(LockResource(loaded));
    if (block == nullptr) return {};
    return string_block_entry(block, SizeofResource(module, found) / sizeof *block,
                              id % kStringsPerBlock);
  }

  void* native() const noexcept override { return module_.get(); }

 private:
  OwnedModule module_;
};

}  // namespace

std::unique_ptr<CoreModule> load_core_module() {
  OwnedModule module(LoadLibraryExA("ORLOCORE", nullptr, LOAD_LIBRARY_AS_DATAFILE));
  if (!module) return nullptr;
  return std::make_unique<LoadedCoreModule>(std::move(module));
}

}  // namespace ORLO
