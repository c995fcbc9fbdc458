// What the library needs of COM, looked up when it is first needed.
#pragma once

#include <cstddef>

#include "orlo/module_functions.h"

namespace ORLO {

enum class ComFunction : size_t {
  resume_class_objects,
  add_ref_server_process,
  release_server_process,
  initialize,
  create_instance,
};
inline constexpr size_t kComFunctions = 5;

class ComModule {
 public:
  /// Throws ORLOException for the first function that is missing.
  explicit ComModule(ModuleFunctions& functions);

  ModuleFunctions::Function operator[](ComFunction which) const noexcept {
    return found_[static_cast<size_t>(which)];
  }

 private:
  ModuleFunctions::Function found_[kComFunctions];
};

/// The process's. After a failure the next call looks again.
const ComModule& com_module();

}  // namespace ORLO
