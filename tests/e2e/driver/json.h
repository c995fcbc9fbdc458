// Writes one JSON value. Bytes above 126 leave as \u00XX, so that texts of any code page arrive
// byte for byte.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace driver {

class Json {
 public:
  Json& begin_object() { return open('{'); }
  Json& end_object() { return close('}'); }
  Json& begin_array() { return open('['); }
  Json& end_array() { return close(']'); }
  /// Names the next value; only inside an object.
  Json& key(std::string_view name);

  Json& text(std::string_view bytes);
  Json& number(int64_t value);
  Json& boolean(bool value);
  /// A value that is JSON already.
  Json& raw(std::string_view json);

  Json& member(std::string_view name, std::string_view bytes) { return key(name).text(bytes); }
  Json& member(std::string_view name, const char* bytes) { return key(name).text(bytes); }
  Json& member(std::string_view name, int64_t value) { return key(name).number(value); }
  /// A flag; a function of its own, since a pointer would convert to it silently.
  Json& flag(std::string_view name, bool value) { return key(name).boolean(value); }

  const std::string& str() const { return out_; }

 private:
  Json& open(char bracket);
  Json& close(char bracket);
  void separate();
  void quote(std::string_view bytes);

  std::string out_;
};

}  // namespace driver
