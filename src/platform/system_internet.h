// The system's HTTP client by the functions of its module.
#pragma once

#include <memory>
#include <optional>

#include "orlo/module_functions.h"
#include "platform/internet.h"

/// A client on `functions`, looked up with the first call; all transfers fail if one is missing.
/// The module must stay loaded, and `functions` live as long as the client.
std::unique_ptr<Internet> make_internet(ORLO::ModuleFunctions& functions);

/// What InetIsOffline of a library says; none without the library or the function. The library is
/// released again.
std::optional<bool> ask_if_offline(const char* library);
