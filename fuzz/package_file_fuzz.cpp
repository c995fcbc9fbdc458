// Any bytes as a package's file, and as what stands in a compound file after a sound header.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/package_file_check.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Counts what is asked of it.
class BytesFile final : public ORLO::RawFile {
 public:
  explicit BytesFile(const std::string& bytes) : bytes_(bytes) {}

  ORLO::Transfer read(uint64_t offset, char* block, size_t size) override {
    ++reads;
    if (offset >= bytes_.size()) return {};
    return {bytes_.copy(block, size, static_cast<size_t>(offset)), 0};
  }
  ORLO::Transfer write(uint64_t, const char*, size_t) override { return {0, 1}; }

  size_t reads = 0;

 private:
  const std::string& bytes_;
};

void check(const std::string& bytes) {
  BytesFile file(bytes);
  const auto code_page = check_package_file(file);
  demand(file.reads <= 3);
  if (!code_page) return;
  // The smallest has a header, a table, a directory, small streams and their table.
  demand(bytes.size() > 2048 && (*code_page & 0x80000000) == 0);
  demand(check_package_file(file) == code_page);
  std::string longer = bytes;
  longer.resize(bytes.size() + 512);
  BytesFile other(longer);
  demand(check_package_file(other) == code_page);
}

/// The table of successors first, then the directory.
std::string header() {
  std::string bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
  bytes.resize(512, '\xFF');
  bytes.replace(30, 4, std::string("\x09\0\x06\0", 4));
  bytes.replace(44, 8, std::string("\1\0\0\0\1\0\0\0", 8));
  bytes.replace(56, 12, std::string("\0\x10\0\0\2\0\0\0\1\0\0\0", 12));
  bytes.replace(72, 8, std::string(8, '\0'));
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  check(bytes);
  check(header() + bytes);
  return 0;
}
