#include "orlo/com_module.h"

namespace ORLO {

const ComModule& com_module() {
  static const ComModule module(system_functions());
  return module;
}

}  // namespace ORLO
