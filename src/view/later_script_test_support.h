// What a test does while something else has the message loop.
#pragma once

#include <functional>
#include <utility>

#include "orlo/orlowin.h"

/// Runs its script once all messages have been handled: timers come last. One at a time, but a
/// script may set the next one.
class LaterScript {
 public:
  explicit LaterScript(std::function<void()> script, UINT milliseconds = 10) {
    set(std::move(script), milliseconds);
  }
  ~LaterScript() { script_ = {}; }
  LaterScript(const LaterScript&) = delete;
  LaterScript& operator=(const LaterScript&) = delete;

  static void set(std::function<void()> script, UINT milliseconds = 10) {
    script_ = std::move(script);
    SetTimer(nullptr, 0, milliseconds, &LaterScript::expired);
  }

 private:
  static void CALLBACK expired(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (const auto script = std::exchange(script_, {})) script();
  }
  static inline std::function<void()> script_;
};
