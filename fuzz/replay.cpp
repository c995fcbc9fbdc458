// Replays a fuzz target's kept corpus, one test for each file. One object serves all targets: the
// program's own name, TARGET_corpus_tests, tells which corpus is meant.
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

std::string target_of(const char* program) {
  const std::string name = std::filesystem::path(program).stem().string();
  return name.substr(0, name.rfind("_corpus_tests"));
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const std::string target = target_of(argv[0]);
  for (const auto& entry :
       std::filesystem::directory_iterator(test_data("fuzz/corpus/" + target))) {
    const std::string name = entry.path().filename().string();
    testing::RegisterTest(("Corpus_" + target).c_str(), name.c_str(), nullptr, nullptr, __FILE__,
                          __LINE__, [path = entry.path()] { return new Replay(path); });
  }
  return RUN_ALL_TESTS();
}
