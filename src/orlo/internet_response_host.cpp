#include <cerrno>

#include "orlo/internet_response.h"

namespace ORLO {

uint32_t read_internet_response(char*, uint32_t&) {
  // No call that could have had a response is made on a build machine.
  return ENOSYS;
}

}  // namespace ORLO
