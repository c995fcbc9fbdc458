#include "orlo/global_dialog.h"

#include <map>

#include "orlo/thread.h"

namespace ORLO {
namespace {

struct Names {
  CriticalSection lock;
  std::map<std::string, HWND> holders;
};

Names& names() {
  static Names process_wide;
  return process_wide;
}

}  // namespace

GlobalName::GlobalName(const char* name, HWND window) : name_(name) {
  const Lock hold(names().lock);
  const auto [holder, is_first] = names().holders.emplace(name_, window);
  if (!is_first) before_ = holder->second;
}

GlobalName::~GlobalName() {
  if (before_ != nullptr) return;
  const Lock hold(names().lock);
  names().holders.erase(name_);
}

void bring_to_front(HWND window) {
  if (IsIconic(window)) ShowWindow(window, SW_RESTORE);
  const HWND popup = GetLastActivePopup(window);
  SetForegroundWindow(popup != nullptr ? popup : window);
}

}  // namespace ORLO
