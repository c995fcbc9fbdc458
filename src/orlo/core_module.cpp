#include "orlo/core_module.h"

#include <utility>

#include "orlo/report_state.h"

namespace ORLO {
namespace {

/// Both under report_lock().
struct Loading {
  CoreModuleLoader loader;
  bool has_failed = false;
};

Loading& loading() {
  // Never destroyed: a report may come while statics go down.
  static Loading& state = *new Loading;
  return state;
}

}  // namespace

std::unique_ptr<CoreModule> core_module() {
  CoreModuleLoader loader;
  {
    const Lock hold(report_lock());
    if (loading().has_failed) return nullptr;
    loader = loading().loader;
  }
  auto module = loader ? loader() : load_core_module();
  if (module == nullptr) {
    const Lock hold(report_lock());
    loading().has_failed = true;
  }
  return module;
}

String core_string(unsigned id, const char* built_in) {
  String text;
  const auto module = core_module();
  return module != nullptr && module->string(id, text) ? text : String(built_in);
}

std::u16string string_block_entry(const char16_t* block, size_t units, unsigned index) {
  const std::u16string_view all(block, units);
  size_t start = 0;
  for (unsigned i = 0; start < all.size(); ++i) {
    const size_t length = all[start++];
    if (length > all.size() - start) break;
    if (i == index) return std::u16string(all.substr(start, length));
    start += length;
  }
  return {};
}

void set_core_module_loader(CoreModuleLoader loader) {
  const Lock hold(report_lock());
  loading().loader = std::move(loader);
  loading().has_failed = false;
}

}  // namespace ORLO
