// Replays a fuzz target's kept corpus, one test for each file.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/file_bytes_test_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

class Replay : public testing::Test {
 public:
  explicit Replay(std::filesystem::path file) : file_(std::move(file)) {}
  void TestBody() override {
    const std::string bytes = file_bytes(file_);
    // A violated promise aborts, which no test survives.
    EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()),
              0);
  }

 private:
  const std::filesystem::path file_;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  for (const auto& entry :
       std::filesystem::directory_iterator(test_data("fuzz/corpus/" ZOLVANE_TARGET))) {
    const std::string name = entry.path().filename().string();
    testing::RegisterTest("Corpus_" ZOLVANE_TARGET, name.c_str(), nullptr, nullptr, __FILE__,
                          __LINE__, [path = entry.path()] { return new Replay(path); });
  }
  return RUN_ALL_TESTS();
}
