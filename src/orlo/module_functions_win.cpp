#include "orlo/module_functions.h"

#include "orlo/orlowin.h"

namespace ORLO {
namespace {

class SystemFunctions : public ModuleFunctions {
 public:
  Function find(const char* module, const char* name) override {
    HMODULE loaded = GetModuleHandleA(module);
    if (loaded == nullptr) loaded = LoadLibraryA(module);
    return loaded != nullptr ? reinterpret_cast<Function>(GetProcAddress(loaded, name)) : nullptr;
  }
};

}  // namespace

ModuleFunctions& system_functions() {
  static SystemFunctions functions;
  return functions;
}

}  // namespace ORLO
