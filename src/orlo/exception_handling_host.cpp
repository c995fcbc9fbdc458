#include "orlo/exception_handling.h"

namespace ORLO {

// The build machine has neither filter nor console events, and its streams are binary.
void install_exception_filter() {}

void prepare_console() {}

}  // namespace ORLO
