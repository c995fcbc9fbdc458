#include "platform/package_file_check.h"

#include <gtest/gtest.h>

#include <random>

#include "orlo/file_test_support.h"

namespace {

std::optional<uint32_t> checked(const std::string& bytes) {
  MemoryFile file{bytes};
  RawMemoryFile raw(file);
  return check_package_file(raw);
}

}  // namespace

TEST(PackageFileCheck, TakesNoOtherFileForADatabase) {
  EXPECT_EQ(checked(""), std::nullopt);
  EXPECT_EQ(checked("no database"), std::nullopt);
  EXPECT_EQ(checked(std::string(4096, '\0')), std::nullopt);
  EXPECT_EQ(checked(std::string(4096, '\xFF')), std::nullopt);
}

TEST(PackageFileCheck, EndsWithAnyBytesAfterTheRightBeginning) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    while (bytes.size() < 4096)
      bytes += static_cast<char>(random() % (round % 2 == 0 ? 256 : 4));
    bytes[30] = 9;
    bytes[31] = 0;
    EXPECT_EQ(checked(bytes), std::nullopt);
  }
}
