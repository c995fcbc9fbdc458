// Where the program sends its user: what a publisher sets to its own, see cmake/settings.cmake.
// Read by the resource compiler too, so nothing but #defines.
#pragma once

#include "address_settings.h"
