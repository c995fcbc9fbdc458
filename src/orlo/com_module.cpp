#include "orlo/com_module.h"

namespace ORLO {
namespace {

constexpr const char* kModule = "OLE32";
/// By ComFunction, which is the order in which they are looked up.
constexpr const char* kNames[kComFunctions] = {"CoResumeClassObjects", "CoAddRefServerProcess",
                                               "CoReleaseServerProcess", "CoInitializeEx",
                                               "CoCreateInstanceEx"};

}  // namespace

ComModule::ComModule(ModuleFunctions& functions) {
  for (size_t i = 0; i < kComFunctions; ++i) {
    found_[i] = functions.require<ModuleFunctions::Function>(kModule, kNames[i]);
  }
}

}  // namespace ORLO
