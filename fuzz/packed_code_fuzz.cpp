// Any bytes as a product code, and as the digits of a well-formed one.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "inventory/installer_patches.h"
#include "platform/memory_installer.h"

namespace {

constexpr size_t kDigits = 32;

void demand(bool holds) {
  if (!holds) std::abort();
}

bool is_mark(char c) {
  return c == '{' || c == '}' || c == '-';
}

std::string stripped(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(), &is_mark), text.end());
  return text;
}

std::string packed(const std::string& code) {
  const String result = PackProductCode(String(code));
  demand(std::strlen(result.c_str()) <= result.length());
  return std::string(result.c_str(), result.length());
}

void check(const std::string& code) {
  const std::string plain = stripped(code);
  const std::string result = packed(code);
  demand(result.size() == plain.size());
  if (plain.size() != kDigits) {
    demand(result == plain);
    return;
  }
  demand(std::is_permutation(plain.begin(), plain.end(), result.begin()));
  demand(packed(result) == plain);
  demand(packed_product_key(code) == result);
}

/// A GUID's packed form leads back to it.
void check_guid(const std::string& bytes) {
  std::string digits;
  for (size_t i = 0; i < kDigits; ++i)
    digits += "0123456789ABCDEF"[static_cast<uint8_t>(bytes.at(i)) % 16];
  const std::string code = product_code_of(digits);
  demand(packed(code) == digits);
  demand(product_code_of(packed(code)) == code);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  check(bytes);
  bytes.resize(kDigits, '\0');
  check(bytes);
  check_guid(bytes);
  return 0;
}
