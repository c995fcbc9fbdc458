#include "json.h"

namespace driver {

Json& Json::key(std::string_view name) {
  separate();
  quote(name);
  out_ += ':';
  return *this;
}

Json& Json::text(std::string_view bytes) {
  separate();
  quote(bytes);
  return *this;
}

Json& Json::number(int64_t value) {
  separate();
  out_ += std::to_string(value);
  return *this;
}

Json& Json::boolean(bool value) {
  separate();
  out_ += value ? "true" : "false";
  return *this;
}

Json& Json::raw(std::string_view json) {
  separate();
  out_ += json;
  return *this;
}

Json& Json::open(char bracket) {
  separate();
  out_ += bracket;
  return *this;
}

Json& Json::close(char bracket) {
  out_ += bracket;
  return *this;
}

void Json::separate() {
  if (out_.empty()) return;
  const char last = out_.back();
  if (last != '{' && last != '[' && last != ':') out_ += ',';
}

void Json::quote(std::string_view bytes) {
  static constexpr char kHex[] = "0123456789abcdef";
  out_ += '"';
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out_ += '\\';
      out_ += c;
    } else if (byte < 0x20 || byte > 0x7e) {
      out_ += "\\u00";
      out_ += kHex[byte >> 4];
      out_ += kHex[byte & 15];
    } else {
      out_ += c;
    }
  }
  out_ += '"';
}

}  // namespace driver
