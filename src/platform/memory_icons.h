// Icons in memory, for tests and for the build machine.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "orlo/thread.h"
#include "platform/icons.h"

/// A picture of one colour, 0xRRGGBB.
class MemoryIcon final : public Icon {
 public:
  explicit MemoryIcon(uint32_t color) noexcept : color_(color) { ++live_count(); }
  ~MemoryIcon() override { --live_count(); }
  MemoryIcon(const MemoryIcon&) = delete;
  MemoryIcon& operator=(const MemoryIcon&) = delete;

  uint32_t color() const noexcept { return color_; }
  /// How many there are now, for leak checks.
  static int live() noexcept { return live_count(); }

 private:
  static std::atomic<int>& live_count() noexcept {
    static std::atomic<int> count{0};
    return count;
  }
  const uint32_t color_;
};

/// Paths compare without case and are taken literally otherwise. To be filled before another thread
/// extracts.
class MemoryIcons : public IconExtractor {
 public:
  void add_icon(const std::string& file, int32_t index, bool large, uint32_t color);
  /// Alike in both sizes.
  void add_icon(const std::string& file, int32_t index, uint32_t color);

  /// Makes every further extraction fail.
  void fail() noexcept { failing_ = true; }
  /// Called at the beginning of each extraction, on its thread; may wait, or throw.
  std::function<void()> on_extract;
  /// The extractions so far, as "C:\\x.exe 3 small".
  std::vector<std::string> calls() const;
  void forget_calls();

  std::unique_ptr<Icon> extract(const char* file, int32_t index, bool large) override;

 private:
  using Place = std::tuple<std::string, int32_t, bool>;

  std::map<Place, uint32_t> icons_;  // paths in upper case
  std::atomic<bool> failing_{false};
  mutable ORLO::CriticalSection lock_;
  std::vector<std::string> calls_;  // guarded by lock_
};
