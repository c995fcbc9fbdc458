// The database of a package, looked at before the platform opens it.
#pragma once

#include <cstdint>
#include <optional>

#include "orlo/raw_file.h"

/// The platform trusts what leads to a database's tables: the tree of the file's directory, the
/// strings, and the numbers of each table's columns. The code page of the strings, 0 for none; no
/// value if one of these is damaged or the file is no database at all. Whether the tables
/// themselves are whole is left to the platform.
std::optional<uint32_t> check_package_file(ORLO::RawFile& file);
