// Folders of the file system. Paths are 8-bit, in the code page.
#pragma once

#include <string_view>

namespace ORLO {

/// Creates the folder that the file at `path` belongs into, with all its parents that are missing.
/// What can't be created is passed over: opening the file tells.
void create_folder_of(std::string_view path);

// The platform's part:

/// Fails without a word, above all if it is there already.
void create_folder(const char* path) noexcept;
bool is_folder_separator(char c) noexcept;

}  // namespace ORLO
