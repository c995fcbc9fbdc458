#include "platform/enumeration_end.h"

InstallerStatus EnumerationEnd::judge(uint32_t index, InstallerStatus status) noexcept {
  if (index == 0 || status != last_) times_ = 0;
  last_ = status;
  if (status == kInstallerSuccess) return status;
  return ++times_ < kMostFailures ? status : kInstallerNoMoreItems;
}
