// The name by which other machines know this one.
#pragma once

#include <string>

/// Without its domain, in UTF-8; empty if the system doesn't tell.
std::string host_name();
