// What OwnKey promises, tested on the key in memory here and on the system's own in
// own_key_contract_win_test.cpp.
#include "platform/memory_own_key.h"
#include "platform/own_key_test_support.h"

namespace {

class MemoryOwnKeyBed final : public OwnKeyBed {
 public:
  OwnKey& key() override { return key_; }
  void put(const char* name, uint32_t, const std::string& bytes) override {
    key_.values[kOwnTestPath + (std::string(": ") + name)] = bytes;
  }
  const char* refused_path() override {
    key_.refuse_to_open();
    return kOtherTestPath;
  }
  void lose_key() override { key_.refuse_to_write(kRegKeyDeleted); }

 private:
  MemoryOwnKey key_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, OwnKeyContract,
                         ::testing::Values(OwnKeyBedMaker{
                             "Own", [] { return std::make_unique<MemoryOwnKeyBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(OwnKeyContract, IsCreatedOrOpened) {
  EXPECT_TRUE(key().open(kOwnTestPath));
  EXPECT_TRUE(key().open(kOwnTestPath));
}

TEST_P(OwnKeyContract, GivesWhatWasWritten) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  for (const std::string& text : {std::string("22.11.2026"), std::string(), std::string("\xE4\xF6"),
                                  std::string(10'000, 'x'), std::string("shorter")})
    EXPECT_EQ(written(text), text);
}

TEST_P(OwnKeyContract, KeepsWhatWasWritten) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  written("kept");
  ASSERT_TRUE(key().open(kOtherTestPath));
  EXPECT_STREQ(key().text("a value").c_str(), "");
  ASSERT_TRUE(key().open(kOwnTestPath));
  EXPECT_STREQ(key().text("a value").c_str(), "kept");
}

TEST_P(OwnKeyContract, HasNoTextOfAValueThatIsNotThere) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  EXPECT_STREQ(key().text("a value").c_str(), "");
}

TEST_P(OwnKeyContract, EndsATextAtItsFirstNulWhateverItsType) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  const std::string bytes("abc\0def\0", 8);
  for (const uint32_t type : {kRegSz, kRegExpandSz, kRegBinary, kRegMultiSz, 4711u}) {
    bed().put("a value", type, bytes);
    const String text = key().text("a value");
    EXPECT_STREQ(text.c_str(), "abc") << type;
    EXPECT_EQ(text.length(), 3u) << type;
  }
  bed().put("a value", kRegDword, "5678");
  EXPECT_STREQ(key().text("a value").c_str(), "5678");
}

TEST_P(OwnKeyContract, ReadsATextWithoutEnd) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  bed().put("a value", kRegSz, "abc");
  EXPECT_STREQ(key().text("a value").c_str(), "abc");
}

TEST_P(OwnKeyContract, HasNothingBeforeItIsOpen) {
  EXPECT_STREQ(key().text("a value").c_str(), "");
  EXPECT_EQ(key().set_text("a value", "x"), kRegInvalidHandle);
}

TEST_P(OwnKeyContract, HasNothingAfterAnOpenThatHasFailed) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  written("x");
  EXPECT_FALSE(key().open(bed().refused_path()));
  EXPECT_STREQ(key().text("a value").c_str(), "");
  EXPECT_EQ(key().set_text("a value", "y"), kRegInvalidHandle);
}

TEST_P(OwnKeyContract, TellsWhyAWriteWasRefused) {
  ASSERT_TRUE(key().open(kOwnTestPath));
  bed().lose_key();
  EXPECT_EQ(key().set_text("a value", "x"), kRegKeyDeleted);
}
