#include "orlo/exception_handling.h"

#include <new>

#include "orlo/exception.h"

namespace ORLO {
namespace {

constexpr uint32_t kErrorOutOfMemory = 14;

void throw_failed_allocation() {
  // The exception itself takes a little memory; if even that isn't there, the plain one has to do.
  thread_local bool throwing = false;
  if (throwing) throw std::bad_alloc();
  struct Scope {
    Scope() { throwing = true; }
    ~Scope() { throwing = false; }
  } const scope;
  throw SDKException(kErrorOutOfMemory);
}

}  // namespace

void install_exception_handling(bool handle_out_of_memory) {
  set_exception_mode(true);
  install_exception_filter();
  // The runtime's own malloc isn't switched to the handler: exceptions can't pass its frames. What
  // allocates with it asks the handler by itself, see throw_out_of_memory().
  if (handle_out_of_memory) std::set_new_handler(&throw_failed_allocation);
}

}  // namespace ORLO
