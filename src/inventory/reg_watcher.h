// Tells of changes below one registry key.
#pragma once

#include <cstdint>
#include <functional>

#include "orlo/active_object.h"
#include "platform/registry.h"

/// Runs from its construction until it is stopped, or until the key can't be watched any longer,
/// of which it says nothing.
class RegWatcherThread : public ORLO::ActiveFinisher {
 public:
  /// `key` must stay open while the watcher lives, and `changeEvent`, which nobody else uses, must
  /// live while the key is open. `tell` is called on the watcher's thread, once for each signal of
  /// the registry; it must not wait for the thread that destroys the watcher.
  RegWatcherThread(const RegistryKey& key, ORLO::Event& changeEvent, std::function<void()> tell,
                   bool watchSubtree, uint32_t notifyFilter);
  ~RegWatcherThread() override;

 protected:
  int Run() override;

 private:
  bool arm();

  const RegistryKey& key_;
  ORLO::Event& changeEvent_;
  const std::function<void()> tell_;
  const bool watchSubtree_;
  const uint32_t notifyFilter_;
};
