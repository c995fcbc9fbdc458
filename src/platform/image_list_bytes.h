// What an image list has written, looked at before the platform reads it.
#pragma once

#include <string>

/// The platform believes what such bytes say of themselves: one wrong number, or an end that comes
/// too soon, and it reads what isn't its own. False unless all that they say is there. Of the
/// numbers that only matter for the list's growth, the bytes get sound ones.
/// Bytes of a version that isn't known here are left to the platform.
bool check_image_list_bytes(std::string& bytes);
