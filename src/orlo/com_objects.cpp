#include "orlo/com_objects.h"

#include <utility>

namespace ORLO {

void ComObjects::object_made() {
  const Lock hold(lock_);
  ++live_;
}

void ComObjects::object_gone() {
  const Lock hold(lock_);
  --live_;
}

void ComObjects::set_registered(std::function<void()> revoke) {
  const Lock hold(lock_);
  ++registered_;
  revoke_ = std::move(revoke);
}

void ComObjects::revoke_registration() {
  std::function<void()> revoke;
  {
    const Lock hold(lock_);
    revoke = std::exchange(revoke_, {});
    registered_ = 0;
  }
  if (revoke) revoke();
}

bool ComObjects::any_alive() const {
  const Lock hold(lock_);
  return live_ > 0;
}

bool ComObjects::while_in_use(const std::function<void()>& action) const {
  const Lock hold(lock_);
  if (live_ <= registered_) return false;
  action();
  return true;
}

ComObjects& com_objects() {
  static ComObjects objects;
  return objects;
}

}  // namespace ORLO
