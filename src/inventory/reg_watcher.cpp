#include "inventory/reg_watcher.h"

#include <utility>

RegWatcherThread::RegWatcherThread(const RegistryKey& key, ORLO::Event& changeEvent,
                                   std::function<void()> tell, bool watchSubtree,
                                   uint32_t notifyFilter)
    : ActiveFinisher("RegWatcherThread"),
      key_(key),
      changeEvent_(changeEvent),
      tell_(std::move(tell)),
      watchSubtree_(watchSubtree),
      notifyFilter_(notifyFilter) {
  resume();
}

RegWatcherThread::~RegWatcherThread() {
  stop(WaitMode::pump);
}

bool RegWatcherThread::arm() {
  return key_.registry()->notify(key_, watchSubtree_, notifyFilter_, changeEvent_) == kRegSuccess;
}

int RegWatcherThread::Run() {
  if (!arm()) return -1;
  while (!stop_requested()) {
    ORLO::Waitable* const items[] = {&changeEvent_, &finish_signal()};
    if (ORLO::wait_any(items, 2, ORLO::kInfinite) != 0) continue;
    // Told first and armed second: whoever is told reads the registry later than this.
    tell_();
    if (!arm()) return -1;
  }
  return 0;
}
