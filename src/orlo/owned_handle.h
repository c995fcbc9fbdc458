// Sole owners of handles, built from a traits struct per kind.
#pragma once

#include <atomic>
#include <utility>

namespace ORLO {

/// How many handles of all kinds are owned now, for leak checks.
inline std::atomic<int>& live_handles() noexcept {
  static std::atomic<int> count{0};
  return count;
}

/// Closes its handle when it dies. Traits give `Handle`, `invalid()` and `close(Handle)`, so that
/// each kind keeps its own value for "none".
template <typename Traits>
class OwnedHandle {
 public:
  using Handle = typename Traits::Handle;

  OwnedHandle() noexcept = default;
  /// Takes over `handle`; the invalid one is fine.
  explicit OwnedHandle(Handle handle) noexcept { reset(handle); }
  OwnedHandle(OwnedHandle&& other) noexcept : handle_(other.take()) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    OwnedHandle moved(std::move(other));
    std::swap(handle_, moved.handle_);
    return *this;
  }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  ~OwnedHandle() { reset(); }

  Handle get() const noexcept { return handle_; }
  explicit operator bool() const noexcept { return handle_ != Traits::invalid(); }

  void reset(Handle handle = Traits::invalid()) noexcept {
    const Handle old = std::exchange(handle_, handle);
    if (handle != Traits::invalid()) count(1);
    if (old == Traits::invalid()) return;
    count(-1);
    Traits::close(old);
  }

  /// Gives the handle away; the caller, or whom the caller hands it to, must close it.
  Handle release() noexcept {
    if (handle_ != Traits::invalid()) count(-1);
    return take();
  }

  /// How many handles of this kind are owned now, for leak checks.
  static int live() noexcept { return live_count(); }

 private:
  static void count(int change) noexcept {
    live_count() += change;
    live_handles() += change;
  }
  Handle take() noexcept { return std::exchange(handle_, Traits::invalid()); }
  static std::atomic<int>& live_count() noexcept {
    static std::atomic<int> count{0};
    return count;
  }

  Handle handle_ = Traits::invalid();
};

}  // namespace ORLO
