#include "platform/system_version.h"

SystemVersion system_version() noexcept {
  return {};
}
