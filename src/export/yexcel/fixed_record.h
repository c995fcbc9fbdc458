// Records whose size is known beforehand.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

#include "export/yexcel/record.h"

namespace YExcel {

/// So many bytes, which must all be put, one number after the other.
template <size_t kSize>
class Bytes {
 public:
  void put16(uint16_t number) noexcept {
    put8(static_cast<uint8_t>(number));
    put8(static_cast<uint8_t>(number >> 8));
  }
  void put32(uint32_t number) noexcept {
    put16(static_cast<uint16_t>(number));
    put16(static_cast<uint16_t>(number >> 16));
  }
  void put_double(double number) noexcept {
    const auto bits = std::bit_cast<uint64_t>(number);
    put32(static_cast<uint32_t>(bits));
    put32(static_cast<uint32_t>(bits >> 32));
  }
  const std::array<char, kSize>& bytes() const noexcept { return bytes_; }

 private:
  void put8(uint8_t number) noexcept { bytes_[size_++] = static_cast<char>(number); }

  std::array<char, kSize> bytes_;
  size_t size_ = 0;
};

/// A record, or the begin of one. Built on the stack and appended in one piece.
template <size_t kBody>
class FixedRecord : public Bytes<kRecordHeader + kBody> {
 public:
  static constexpr size_t kSize = kRecordHeader + kBody;

  explicit FixedRecord(uint16_t code, uint16_t body = kBody) noexcept {
    this->put16(code);
    this->put16(body);
  }
  void append_to(std::string& buffer) const { buffer.append(this->bytes().data(), kSize); }
};

}  // namespace YExcel
