// Functions that are looked up by name at run time, so that the program starts on a system whose
// module lacks one.
#pragma once

#include "orlo/exception.h"

namespace ORLO {

/// A function that can't be done without is missing.
inline constexpr uint32_t kErrorMissingFunction = 0x42FF0007;

class ModuleFunctions {
 public:
  using Function = void (*)();

  virtual ~ModuleFunctions() = default;
  /// Null if there is no such module or it has no such function. A module that has to be loaded for
  /// it stays loaded.
  virtual Function find(const char* module, const char* name) = 0;

  /// The same as the type that the caller knows it to have; throws ORLOException where it is
  /// missing.
  template <typename Type>
  Type require(const char* module, const char* name) {
    const Function function = find(module, name);
    if (function == nullptr) throw ORLOException(kErrorMissingFunction);
    return reinterpret_cast<Type>(function);
  }
};

/// The system's. On a build machine there is none to ask.
ModuleFunctions& system_functions();

}  // namespace ORLO
