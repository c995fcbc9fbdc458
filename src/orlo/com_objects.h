// How many COM objects of the library's are alive, and what keeps the process from ending for them.
#pragma once

#include <functional>

#include "orlo/thread.h"

namespace ORLO {

/// May be used from any thread. A registered object is alive too: only what is alive beyond the
/// registered ones is in somebody's hands.
class ComObjects {
 public:
  void object_made();
  void object_gone();
  /// Counts an object, already made, as registered; `revoke` takes it off the system again.
  void set_registered(std::function<void()> revoke);
  /// Revokes the registration if there is one. Outside the lock, since objects may go by it.
  void revoke_registration();

  bool any_alive() const;
  /// Runs `action` under the count's lock if an object is in use; returns whether it did.
  bool while_in_use(const std::function<void()>& action) const;

 private:
  mutable CriticalSection lock_;
  int live_ = 0;
  int registered_ = 0;
  std::function<void()> revoke_;
};

/// Those of this process.
ComObjects& com_objects();

}  // namespace ORLO
