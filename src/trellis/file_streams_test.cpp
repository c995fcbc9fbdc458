#include "trellis/file_streams.h"

#include <gtest/gtest.h>

#include <string>

#include "orlo/file_test_support.h"

namespace Trellis {
namespace {

std::string rest_of(std::istream& in) {
  std::ostringstream text;
  for (int c = in.get(); c != -1; c = in.get())
    text << static_cast<char>(c);
  return text.str();
}

TEST(FileStreams, WriteAndReadTheSameBytes) {
  const TempFolder folder;
  std::string bytes;
  for (int i = 0; i < 300000; ++i)
    bytes += static_cast<char>(i % 256);
  {
    tofstream out(folder.path("f").c_str());
    EXPECT_TRUE(out.good());
    out << bytes.substr(0, 10);
    out.put(bytes[10]);
    out.write(bytes.data() + 11, static_cast<std::streamsize>(bytes.size() - 11));
  }
  EXPECT_EQ(folder.content("f"), bytes);
  tifstream in(folder.path("f").c_str());
  EXPECT_EQ(rest_of(in), bytes);
  EXPECT_TRUE(in.eof());
}

TEST(FileStreams, ReplaceTheFile) {
  const TempFolder folder;
  const std::string path = folder.make("f", "a long old content");
  { const tofstream out(path.c_str()); }
  EXPECT_EQ(folder.content("f"), "");
}

TEST(FileStreams, FlushWhatWasWrittenWhenAsked) {
  const TempFolder folder;
  tofstream out(folder.path("f").c_str());
  out << "abc" << std::flush;
  EXPECT_EQ(folder.content("f"), "abc");
  EXPECT_TRUE(out.good());
}

TEST(FileStreams, HaveFailedWhenTheFileCannotBeOpened) {
  const TempFolder folder;
  tofstream out(folder.path("no/such").c_str());
  EXPECT_TRUE(out.fail());
  out << "lost" << std::flush;
  tifstream in(folder.path("none").c_str());
  EXPECT_TRUE(in.fail());
  EXPECT_EQ(in.get(), -1);
}

TEST(FileStreams, CloseOnlyAFileThatTheyOwn) {
  const TempFolder folder;
  std::FILE* const file = std::fopen(folder.path("f").c_str(), "wb");
  ASSERT_NE(file, nullptr);
  {
    tofstream out(file, false);
    out << "one";
  }
  EXPECT_GE(std::fputs("two", file), 0);
  std::fclose(file);
  EXPECT_EQ(folder.content("f"), "onetwo");
}

}  // namespace
}  // namespace Trellis
