// Which names a downloaded file may have.
#pragma once

#include <string_view>

/// False for a name that could lead out of its folder, or to a device: one with a separator, a
/// stream or a control character, one of dots alone, or a device's whatever extension it has. The
/// empty name is none of these. Texts are 8-bit, in the code page.
bool is_plain_file_name(std::string_view name) noexcept;
