// What a server has said about the last internet call that failed.
#pragma once

#include <cstdint>
#include <functional>

#include "orlo/rstring.h"

namespace ORLO {

/// Puts the server's words into `buffer`, which has room for `size` bytes: 0, or an error code.
/// Error 122, too small a buffer, makes `size` what is needed.
using InternetResponseReader = std::function<uint32_t(char* buffer, uint32_t& size)>;

/// Asks for the size first and then for the words. Throws LWE if they can't be had.
String internet_response_text(const InternetResponseReader& read);

/// The reader of the calling thread's last response. Chosen at link time.
uint32_t read_internet_response(char* buffer, uint32_t& size);

}  // namespace ORLO
