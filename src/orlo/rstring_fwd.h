// The text type by name alone, for headers that only pass it on.
#pragma once

namespace ORLO {
class String;
}  // namespace ORLO

// Application code speaks of String alone.
using ORLO::String;
