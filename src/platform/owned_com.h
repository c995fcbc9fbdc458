// Owner of a reference to a COM object. Needs nothing of the platform's headers itself.
#pragma once

#include "orlo/owned_handle.h"

template <typename T>
struct ComTraits {
  using Handle = T*;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle object) noexcept { object->Release(); }
};
/// Holds one reference to a COM object.
template <typename T>
using OwnedCom = ORLO::OwnedHandle<ComTraits<T>>;
