// The description that publishers start from.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "platform/file_bytes_test_support.h"
#include "update/pad_reader.h"

namespace {

PadInfo sample() {
  std::ifstream file(test_data("packaging/zolvane-pad.xml"), std::ios::binary);
  PadInfo info;
  EXPECT_TRUE(read_pad(file, info));
  return info;
}

TEST(SampleDescription, TellsAllThatTheProgramAsksFor) {
  const PadInfo info = sample();
  EXPECT_STREQ(info.programName.c_str(), "Zolvane");
  EXPECT_STREQ(info.programVersion.c_str(), "5.4");
  EXPECT_EQ(info.releaseDate.year, 2026);
  EXPECT_EQ(info.releaseDate.month, 12);
  EXPECT_EQ(info.releaseDate.day, 1);
  EXPECT_GT(info.fileSize, 0);
  EXPECT_STREQ(info.downloadUrl.c_str(), "https://example.org/zolvane/zolvane-5.4-setup.exe");
  EXPECT_STREQ(info.companyName.c_str(), "Quillmere");
  EXPECT_STREQ(info.author.first_name.c_str(), "Ada");
  EXPECT_STREQ(info.contact.mail.c_str(), "zolvane@example.org");
}

TEST(SampleDescription, HasAMessageForAllOneForAVersionAndOneForASystem) {
  const PadInfo info = sample();
  ASSERT_EQ(info.messages.size(), 3u);
  EXPECT_EQ(messagesFor(info, "5.2", "WIN10.0.19045").c_str(),
            std::string(info.messages[0].text.c_str()));
  const std::string both =
      std::string(info.messages[0].text.c_str()) + "\n\n" + info.messages[1].text.c_str();
  EXPECT_EQ(messagesFor(info, "5.3", "WIN10.0.19045").c_str(), both);
  EXPECT_EQ(messagesFor(info, "5.3", "WIN6.1.7601").c_str(),
            both + "\n\n" + info.messages[2].text.c_str());
}

}  // namespace
