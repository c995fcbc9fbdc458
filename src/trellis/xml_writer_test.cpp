#include "trellis/xml_writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "orlo/assertion.h"
#include "orlo/file_test_support.h"
#include "orlo/report_test_support.h"
#include "trellis/xml_test_support.h"

namespace Trellis {
namespace {

std::string written(const XMLFormat& format, const std::function<void(XMLWriter&)>& write) {
  std::ostringstream out;
  {
    XMLWriter writer(out, format);
    write(writer);
  }
  return out.str();
}

std::string written_plain(const std::function<void(XMLWriter&)>& write) {
  return written(plain_format(), write);
}

void write_nest(XMLWriter& writer) {
  writer.create("a");
  writer["x"] = "1";
  writer.create("b");
  writer.create("c");
  writer.back();
  writer.back();
  writer.create("d");
  writer.back();
  writer.back();
}

TEST(XMLWriter, WritesElementsOnOneLineWithoutPrettiness) {
  EXPECT_EQ(written_plain(write_nest), "<a x=\"1\"><b><c/></b><d/></a>\n");
}

TEST(XMLWriter, BreaksTheLineInFrontOfEachTagWithSomePrettiness) {
  XMLFormat format;
  format.pretty = 1;
  format.endl = "\r\n";
  EXPECT_EQ(written(format, write_nest),
            "\r\n<a x=\"1\">\r\n<b>\r\n<c/>\r\n</b>\r\n<d/>\r\n</a>\r\n");
}

TEST(XMLWriter, IndentsByTwoBlanksForEachLevelWithFullPrettiness) {
  EXPECT_EQ(written(XMLFormat(), write_nest),
            "\n<a x=\"1\">\n  <b>\n    <c/>\n  </b>\n  <d/>\n</a>\n");
}

TEST(XMLWriter, WritesAttributesInByteOrderOfTheirNames) {
  EXPECT_EQ(written_plain([](XMLWriter& writer) {
              writer.create("row");
              for (const char* const name : {"name", "OK", "64bit", "HKEY_ROOT", "MSI"})
                writer[name] = "0";
              writer.back();
            }),
            "<row 64bit=\"0\" HKEY_ROOT=\"0\" MSI=\"0\" OK=\"0\" name=\"0\"/>\n");
}

TEST(XMLWriter, EncodesNamesKeysAndValues) {
  EXPECT_EQ(written_plain([](XMLWriter& writer) {
              writer.create("\xE4<");
              writer["k&"] = "a'\"\x07\xDF\t";
              writer.create("b");
              writer.back();
              writer.back();
            }),
            "<\xC3\xA4&lt; k&amp;=\"a&apos;&quot;&#7;\xC3\x9F\t\"><b/></\xC3\xA4&lt;>\n");
}

TEST(XMLWriter, TakesAttributesUntilTheFirstChildAndLosesLaterOnes) {
  EXPECT_EQ(written_plain([](XMLWriter& writer) {
              writer.create("a");
              writer["x"] = "1";
              writer["x"] = "2";
              writer["empty"];
              writer.create("b");
              writer.back();
              writer["late"] = "3";
              writer.back();
            }),
            "<a empty=\"\" x=\"2\"><b/></a>\n");
}

TEST(XMLWriter, WritesContentAsItStandsAndWithoutALineInFrontOfTheEndTag) {
  const auto write = [](XMLWriter& writer) {
    writer.create("a");
    writer.create("b");
    writer.stack.top().content = "1 &lt; 2";
    writer.back();
    writer.stack.top().content = "mixed";
    writer.back();
  };
  EXPECT_EQ(written(XMLFormat(), write), "\n<a>\n  <b>1 &lt; 2</b>mixed</a>\n");
  EXPECT_EQ(written_plain(write), "<a><b>1 &lt; 2</b>mixed</a>\n");
}

TEST(XMLWriter, TakesANameThatLiesInItsOwnStack) {
  const std::string text = written_plain([](XMLWriter& writer) {
    writer.create("a");
    for (int i = 0; i < 40; ++i)
      writer.create(writer.stack.top().name);
  });
  std::string expected;
  for (int i = 0; i < 40; ++i)
    expected += "<a>";
  EXPECT_EQ(text, expected + "<a\n");
}

TEST(XMLWriter, LeavesOpenElementsOpen) {
  EXPECT_EQ(written_plain([](XMLWriter& writer) {
              writer.create("a");
              writer["x"] = "1";
              writer.create("b");
              writer["y"] = "2";
            }),
            "<a x=\"1\"><b\n");
}

TEST(XMLWriter, WritesOnlyItsLineEndWhenNothingIsCreated) {
  EXPECT_EQ(written_plain([](XMLWriter&) {}), "\n");
}

TEST(XMLWriter, FailsAnAssertionWhenThereIsNothingToCloseAndGoesOn) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  EXPECT_EQ(written_plain([](XMLWriter& writer) {
              EXPECT_FALSE(writer.back());
              writer.create("a");
              EXPECT_TRUE(writer.back());
            }),
            "<a/>\n");
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(reports.shown[0].text, "Assertion failed: !_stack.empty(), file trellis, line 1043");
}

TEST(XMLWriter, LosesAttributesWithoutAnElementInOnePlaceForAll) {
  std::ostringstream out;
  XMLWriter one(out, plain_format());
  XMLWriter other(out, plain_format());
  one["x"] = "1";
  EXPECT_EQ(&one["x"], &other["y"]);
  one.create("a");
  one.back();
  EXPECT_EQ(out.str(), "<a/>");
}

TEST(XMLWriter, CompletesTheFileItTookOverWhenItIsDestroyed) {
  const TempFolder folder;
  const std::string path = folder.path("own.xml");
  {
    XMLWriter writer(std::make_unique<tofstream>(path.c_str()), plain_format());
    writer._format.print_header(writer.out, false);
    writer.create("zolvane");
    writer["version"] = "5.3";
    writer.create("last-entries");
    writer.back();
    writer.back();
  }
  EXPECT_EQ(folder.content("own.xml"),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
            "<zolvane version=\"5.3\"><last-entries/></zolvane>\n");
}

/// Takes some characters and no more.
class SmallBuffer final : public std::streambuf {
 public:
  explicit SmallBuffer(size_t room) : room_(room) {}
  std::string taken;

 protected:
  int_type overflow(int_type c) override {
    if (taken.size() == room_) return traits_type::eof();
    taken += traits_type::to_char_type(c);
    return c;
  }

 private:
  const size_t room_;
};

TEST(XMLWriter, GoesOnWhenItsStreamTakesNoMore) {
  const std::string whole = written_plain(write_nest);
  for (size_t room = 0; room <= whole.size(); ++room) {
    SCOPED_TRACE(room);
    SmallBuffer buffer(room);
    std::ostream out(&buffer);
    {
      XMLWriter writer(out, plain_format());
      write_nest(writer);
      EXPECT_TRUE(writer.stack.empty());
    }
    EXPECT_EQ(buffer.taken, whole.substr(0, room));
  }
}

TEST(XMLWriter, LetsAStreamThrowButNotFromItsEnd) {
  SmallBuffer buffer(0);
  std::ostream out(&buffer);
  out.exceptions(std::ios::badbit);
  {
    XMLWriter writer(out, plain_format());
    EXPECT_ANY_THROW(writer.create("a"));
  }
  EXPECT_TRUE(out.bad());
}

TEST(XMLWriter, WritesIntoNothingWhenTheFileCannotBeOpened) {
  const TempFolder folder;
  XMLWriter writer(std::make_unique<tofstream>(folder.path("no/such.xml").c_str()), plain_format());
  writer._format.print_header(writer.out, true);
  write_nest(writer);
  EXPECT_TRUE(writer.out.fail());
  EXPECT_TRUE(writer.stack.empty());
}

}  // namespace
}  // namespace Trellis
