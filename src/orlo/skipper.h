// The optional helper GDA, which knows how long an instruction is.
#pragma once

#include <cstdint>

namespace ORLO {

/// The length of the instruction at an address, so that it can be skipped; 0 where the helper is
/// missing or doesn't know. The helper is looked for once and stays loaded.
int skippable_length(uintptr_t address) noexcept;

}  // namespace ORLO
