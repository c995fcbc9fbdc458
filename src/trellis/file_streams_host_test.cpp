// A file that takes opening but no bytes, which only build machines have ready.
#include <gtest/gtest.h>

#include <string>

#include "trellis/file_streams.h"
#include "trellis/xml_writer.h"

namespace Trellis {
namespace {

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
