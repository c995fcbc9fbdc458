// Descriptions that publishers put on the net. They are no part of the project; the folder that
// holds them is named by the environment variable ZOLVANE_REALDATA.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_bytes_test_support.h"
#include "update/pad_test_support.h"

namespace {

namespace fs = std::filesystem;

constexpr char kVariable[] = "ZOLVANE_REALDATA";

class RealPadTest : public testing::Test {
 protected:
  void SetUp() override {
    if (std::getenv(kVariable) == nullptr) {
      GTEST_SKIP() << kVariable << " names no folder with real data.";
    }
  }
  /// A path of the host is reached through the drive Z.
  static fs::path folder() {
    const fs::path named = fs::path(std::getenv(kVariable)) / "pad";
    return fs::exists(named) ? named : fs::path("Z:") / named;
  }
  static std::string file(const char* begin) {
    for (const auto& entry : fs::directory_iterator(folder())) {
      if (entry.path().filename().string().starts_with(begin)) return file_bytes(entry.path());
    }
    ADD_FAILURE() << begin;
    return {};
  }
  static std::vector<std::string> files() {
    std::vector<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder()))
      all.push_back(file_bytes(entry.path()));
    return all;
  }
};

bool is_nothing_or_all(const String& text, const String& whole) {
  return text.empty() || std::string_view(text.c_str()) == whole.c_str();
}

TEST_F(RealPadTest, ReadsADescriptionInTheCodePage) {
  const ReadPad pad = read_pad_text(file("cmdlinehere"));
  ASSERT_TRUE(pad.good);
  EXPECT_STREQ(pad.info.programVersion.c_str(), "1.0");
  EXPECT_EQ(pad.info.releaseDate.year, 2002);
  EXPECT_EQ(pad.info.releaseDate.month, 3);
  EXPECT_EQ(pad.info.releaseDate.day, 18);
  EXPECT_EQ(pad.info.fileSize, 266);  // "266,752"
  EXPECT_TRUE(pad.info.contact.mail.empty());
}

TEST_F(RealPadTest, ReadsADescriptionInUtf8) {
  const ReadPad pad = read_pad_text(file("jogoverein"));
  ASSERT_TRUE(pad.good);
  EXPECT_STREQ(pad.info.programVersion.c_str(), "4.0.1");
  EXPECT_EQ(pad.info.fileSize, 8995629);
  EXPECT_STREQ(pad.info.companyName.c_str(), "G\xf6ldenitz");
  EXPECT_TRUE(pad.info.messages.empty());
}

TEST_F(RealPadTest, ReadsADescriptionThatNamesNoEncoding) {
  const ReadPad pad = read_pad_text(file("gigatweaker"));
  ASSERT_TRUE(pad.good);
  EXPECT_STREQ(pad.info.programVersion.c_str(), "3.1.3.465");
  EXPECT_TRUE(pad.info.downloadUrl.length() > 0);
}

TEST_F(RealPadTest, TakesNoPieceOfATextFromATruncatedDescription) {
  for (const std::string& whole : files()) {
    const ReadPad all = read_pad_text(whole);
    int good = 0;
    for (size_t length = 0; length < whole.size(); ++length) {
      const ReadPad pad = read_pad_text(whole.substr(0, length));
      good += pad.good ? 1 : 0;
      ASSERT_TRUE(is_nothing_or_all(pad.info.programVersion, all.info.programVersion)) << length;
      ASSERT_TRUE(is_nothing_or_all(pad.info.downloadUrl, all.info.downloadUrl)) << length;
      ASSERT_TRUE(is_nothing_or_all(pad.info.author.mail, all.info.author.mail)) << length;
    }
    // Cuts inside an attribute are errors; most others aren't.
    EXPECT_GT(good, 0);
    EXPECT_LT(good, static_cast<int>(whole.size()));
  }
}

}  // namespace
