// Bytes of records for tests.
#pragma once

#include <string>
#include <string_view>

namespace YExcel {

/// The bytes that are written as pairs of digits, with blanks between them.
inline std::string bytes_of(std::string_view digits) {
  const auto value_of = [](char digit) { return digit <= '9' ? digit - '0' : digit - 'A' + 10; };
  std::string bytes;
  bytes.reserve(digits.size() / 2);
  for (size_t at = 0; at < digits.size(); ++at) {
    if (digits[at] == ' ') continue;
    bytes.push_back(static_cast<char>((value_of(digits[at]) << 4) | value_of(digits.at(at + 1))));
    ++at;
  }
  return bytes;
}

template <class Record>
std::string written(Record& record) {
  std::string buffer;
  record.Write(buffer);
  return buffer;
}

}  // namespace YExcel
