#include "orlo/skipper.h"

#include "orlo/orlowin.h"

namespace ORLO {
namespace {

/// The helper's object, by the places of its operations.
class Skipper {
 public:
  virtual void first_operation() = 0;
  virtual void second_operation() = 0;
  virtual int instruction_length(uintptr_t address) = 0;

 protected:
  ~Skipper() = default;
};

constexpr WORD kSkipperOrdinal = 2;

Skipper* load_skipper() noexcept {
  const HMODULE helper = LoadLibraryA("GDA");
  if (helper == nullptr) return nullptr;
  const auto give = reinterpret_cast<Skipper* (*)()>(
      reinterpret_cast<void*>(GetProcAddress(helper, MAKEINTRESOURCEA(kSkipperOrdinal))));
  return give != nullptr ? give() : nullptr;
}

}  // namespace

int skippable_length(uintptr_t address) noexcept {
  static Skipper* const skipper = load_skipper();
  return skipper != nullptr ? skipper->instruction_length(address) : 0;
}

}  // namespace ORLO
