#include "export/yexcel/record.h"

#include <bit>

namespace YExcel {
namespace {

void put_piece(std::string& buffer, uint16_t code, std::string_view piece) {
  put16(buffer, code);
  put16(buffer, static_cast<uint16_t>(piece.size()));
  buffer.append(piece);
}

}  // namespace

void put8(std::string& to, uint8_t number) {
  to.push_back(static_cast<char>(number));
}

void put16(std::string& to, uint16_t number) {
  const char bytes[] = {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8)};
  to.append(bytes, sizeof bytes);
}

void put32(std::string& to, uint32_t number) {
  const char bytes[] = {static_cast<char>(number & 0xFF), static_cast<char>((number >> 8) & 0xFF),
                        static_cast<char>((number >> 16) & 0xFF), static_cast<char>(number >> 24)};
  to.append(bytes, sizeof bytes);
}

void put_double(std::string& to, double number) {
  const auto bits = std::bit_cast<uint64_t>(number);
  put32(to, static_cast<uint32_t>(bits));
  put32(to, static_cast<uint32_t>(bits >> 32));
}

void put_wide(std::string& to, std::u16string_view text) {
  for (const char16_t unit : text)
    put16(to, unit);
}

uint32_t write_record(std::string& buffer, uint16_t code, std::string_view body) {
  const size_t before = buffer.size();
  while (body.size() > kLongestBody) {
    put_piece(buffer, code, body.substr(0, kLongestBody));
    body.remove_prefix(kLongestBody);
    code = kContinueCode;
  }
  put_piece(buffer, code, body);
  return static_cast<uint32_t>(buffer.size() - before);
}

}  // namespace YExcel
