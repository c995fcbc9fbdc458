#include "orlo/message_hook.h"

#include <utility>

namespace ORLO {

ScopedMessageHook::ScopedMessageHook(Function function)
    : function_(std::make_shared<const Function>(std::move(function))),
      link_{current_thread_record().message_hooks, this, &ScopedMessageHook::call} {
  current_thread_record().message_hooks = &link_;
}

ScopedMessageHook::~ScopedMessageHook() {
  MessageHook** place = &current_thread_record().message_hooks;
  while (*place != nullptr && *place != &link_)
    place = &(*place)->next;
  if (*place != nullptr) *place = link_.next;
}

bool ScopedMessageHook::call(void* context, MSG& message) {
  const auto function = static_cast<ScopedMessageHook*>(context)->function_;
  return (*function)(message);
}

}  // namespace ORLO
