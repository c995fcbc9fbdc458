// Failures of COM calls.
#pragma once

#include <cstdint>

#include "orlo/rstring.h"

namespace ORLO {

class ComError {
 public:
  /// Source and description are what the call's error object told, if there was one.
  explicit ComError(int32_t result, const String& from = String(), const String& told = String())
      : hresult(result), source(from), description(told) {}

  const int32_t hresult;
  const String source;
  const String description;
};

/// Throws ComError if the result of a COM call is a failure.
void check_com(int32_t hresult);

/// The system's text for a result without its line end, or a text with the number.
String com_error_message(int32_t hresult);
/// The same for a result that the system has no text for.
String com_error_number(int32_t hresult);
String without_line_end(const String& text);

/// The text of a report: all that the error holds.
String com_error_text(const ComError& error);

}  // namespace ORLO
