#include <unistd.h>

#include "platform/host_name.h"

std::string host_name() {
  char name[256] = "";
  return gethostname(name, sizeof name - 1) == 0 ? name : "";
}
