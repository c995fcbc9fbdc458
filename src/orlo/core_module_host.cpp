#include "orlo/core_module.h"

namespace ORLO {

std::unique_ptr<CoreModule> load_core_module() {
  return nullptr;
}

}  // namespace ORLO
