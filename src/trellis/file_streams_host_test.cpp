// Files and descriptors as only build machines have them ready.
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "orlo/file_test_support.h"
#include "trellis/file_streams.h"
#include "trellis/xml_writer.h"

namespace Trellis {
namespace {

int lowest_free_descriptor() {
  const int descriptor = open("/dev/null", O_RDONLY);
  close(descriptor);
  return descriptor;
}

TEST(FileStreams, CloseTheFileThatTheyOpened) {
  const TempFolder folder;
  const int before = lowest_free_descriptor();
  {
    const tofstream out(folder.path("f").c_str());
    const tifstream in(folder.path("f").c_str());
    EXPECT_NE(lowest_free_descriptor(), before);
  }
  EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST(FileStreams, GoBadWithoutMoreWhenTheDiskIsFull) {
  auto stream = std::make_unique<tofstream>("/dev/full");
  ASSERT_TRUE(stream->good());
  XMLWriter writer(std::move(stream), XMLFormat());
  writer.create("a");
  writer["x"] = std::string(200000, 'x');
  writer.back();
  EXPECT_TRUE(writer.out.bad());
}

}  // namespace
}  // namespace Trellis
