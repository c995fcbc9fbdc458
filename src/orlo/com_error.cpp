#include "orlo/com_error.h"

#include "orlo/core_module.h"

namespace ORLO {
namespace {

/// Errors that an IDispatch interface numbers by itself.
constexpr uint32_t kFirstDispatchError = 0x80040200;
constexpr uint32_t kLastDispatchError = 0x8004FFFF;

}  // namespace

void check_com(int32_t hresult) {
  if (hresult < 0) throw ComError(hresult);
}

String without_line_end(const String& text) {
  size_t length = text.length();
  if (length != 0 && text.c_str()[length - 1] == '\n') --length;
  if (length != 0 && text.c_str()[length - 1] == '\r') --length;
  return String(text.c_str(), text.c_str() + length);
}

String com_error_number(int32_t hresult) {
  const auto code = static_cast<uint32_t>(hresult);
  if (code < kFirstDispatchError || code > kLastDispatchError) {
    return String::formatted("Unknown error 0x%0lX", code);
  }
  return String::formatted("IDispatch error #%d", code - kFirstDispatchError);
}

String com_error_message(int32_t hresult) {
  String text;
  return system_message(static_cast<uint32_t>(hresult), text) ? without_line_end(text)
                                                              : com_error_number(hresult);
}

String com_error_text(const ComError& error) {
  return core_formatted(kCoreComException,
                        "A COM exception occured:\n Code = %#x\n Source: \"%s\"\n"
                        " Description: \"%s\"\n Error message: %s\n",
                        static_cast<uint32_t>(error.hresult), error.source, error.description,
                        com_error_message(error.hresult));
}

}  // namespace ORLO
