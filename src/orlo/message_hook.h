// Seeing the thread's messages before they are dispatched.
#pragma once

#include <functional>
#include <memory>

#include "orlo/thread_record.h"

namespace ORLO {

/// In the thread's list of hooks for its scope, in front of those that are there; lives and dies on
/// the thread that made it. Hooks may go in any order, also while one of them runs.
class ScopedMessageHook {
 public:
  /// A true result ends the matter for a message.
  using Function = std::function<bool(MSG& message)>;

  explicit ScopedMessageHook(Function function);
  ~ScopedMessageHook();
  ScopedMessageHook(const ScopedMessageHook&) = delete;
  ScopedMessageHook& operator=(const ScopedMessageHook&) = delete;

 private:
  static bool call(void* context, MSG& message);

  /// Shared with the call under way, which may take the hook out.
  const std::shared_ptr<const Function> function_;
  MessageHook link_;
};

}  // namespace ORLO
