// What reading a long log costs in memory.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

#include "inventory/update_log_test_support.h"
#include "orlo/file_test_support.h"

namespace {

size_t bytes_in_use() {
  const struct mallinfo2 now = mallinfo2();
  return now.uordblks + now.hblkhd;
}

/// 64 MB with a success at each thousandth line and at the end.
std::string make_long_log(const TempFolder& folder) {
  const std::string noise(110, 'n');
  std::ofstream log(folder.path("log"), std::ios::binary);
  for (int line = 0; line < 600'000; ++line)
    log << (line % 1000 == 999 ? success_line("KB1 (2)") : noise) << '\n';
  log.close();
  return folder.path("log");
}

TEST(UpdateLogMemory, IsThatOfTheLongestLineHoweverLongTheLog) {
  if (ZOLVANE_SANITIZED) GTEST_SKIP() << "the sanitizers have a heap of their own";
  const TempFolder folder;
  const std::string path = make_long_log(folder);
  std::set<RowKey> unseen;
  const size_t before = bytes_in_use();
  size_t most = 0;
  size_t rows = 0;
  ReadUpdateLog(path, update_log_clock(), unseen, [&](const Row&) {
    most = std::max(most, bytes_in_use());
    ++rows;
  });
  EXPECT_EQ(rows, 600u);
  constexpr size_t kLittle = 65536;
  EXPECT_LT(most - before, kLittle);
  EXPECT_LT(bytes_in_use(), before + kLittle);
}

}  // namespace
