// The module ORLOCORE that is built for tests, in a folder beside the test program.
#pragma once

#include <string>

#include "orlo/core_module.h"
#include "orlo/orlowin.h"

namespace ORLO {

/// The folder of the module.
inline std::string core_module_folder() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string program = path;
  return program.substr(0, program.find_last_of('\\')) + "\\orlocore";
}

/// Lets the module be found in a folder for its scope; otherwise there is none.
class RealCoreModule {
 public:
  explicit RealCoreModule(const std::string& folder = core_module_folder()) {
    char path[0x7FFF] = {};
    GetEnvironmentVariableA("PATH", path, sizeof path);
    old_path_ = path;
    SetEnvironmentVariableA("PATH", (folder + ";" + old_path_).c_str());
    set_core_module_loader({});
  }
  ~RealCoreModule() {
    SetEnvironmentVariableA("PATH", old_path_.c_str());
    set_core_module_loader({});
  }
  RealCoreModule(const RealCoreModule&) = delete;
  RealCoreModule& operator=(const RealCoreModule&) = delete;

 private:
  std::string old_path_;
};

}  // namespace ORLO
