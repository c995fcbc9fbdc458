// Texts by code from message tables.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/rstring.h"

namespace ORLO {

/// The text that the module's message table, or without a module the system's, has for a code;
/// false, and `text` untouched, if it has none or one that wants values put in.
bool message_text(HMODULE module, uint32_t code, String& text);

}  // namespace ORLO
