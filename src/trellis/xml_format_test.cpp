#include "trellis/xml_format.h"

#include <gtest/gtest.h>

#include <sstream>

#include "orlo/assertion.h"
#include "orlo/report_test_support.h"

namespace Trellis {
namespace {

std::string header(const XMLFormat& format, bool line_feed) {
  std::ostringstream out;
  format.print_header(out, line_feed);
  return out.str();
}

TEST(XMLFormat, HasItsDefaultForm) {
  const XMLFormat format;
  EXPECT_EQ(format.pretty, 2);
  EXPECT_STREQ(format.endl, "\n");
  EXPECT_EQ(format.version, "1.0");
  EXPECT_EQ(format._encoding, "utf-8");
  EXPECT_FALSE(format._utf8_bom);
  EXPECT_EQ(format.doctype.name + format.doctype.public_id + format.doctype.system_id, "");
  EXPECT_TRUE(format.stylesheets.empty());
  EXPECT_EQ(format.standalone, -1);
}

TEST(XMLFormat, PrintsTheDeclaration) {
  XMLFormat format;
  EXPECT_EQ(header(format, false), "<?xml version=\"1.0\" encoding=\"utf-8\"?>");
  format.endl = "\r\n";
  EXPECT_EQ(header(format, true), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n");
}

TEST(XMLFormat, SaysYesToStandaloneWhateverIsSaid) {
  XMLFormat format;
  for (const int standalone : {0, 1}) {
    format.standalone = standalone;
    EXPECT_EQ(header(format, false),
              "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>");
  }
}

TEST(XMLFormat, PrintsAByteOrderMark) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  XMLFormat format;
  format._utf8_bom = true;
  format._encoding = "UTF-8";
  EXPECT_EQ(header(format, false), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  EXPECT_TRUE(reports.shown.empty());
}

TEST(XMLFormat, FailsAnAssertionAtAMarkWithAnotherEncodingAndGoesOn) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  XMLFormat format;
  format._utf8_bom = true;
  format._encoding = "latin1";
  EXPECT_EQ(header(format, false), "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"latin1\"?>");
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(reports.shown[0].text,
            "Assertion failed: !_stricmp(_encoding.c_str(), \"utf-8\"), file trellis, line 800");
}

TEST(XMLFormat, ClosesTheDocumentTypeLikeAnInstruction) {
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
  XMLFormat format;
  format.doctype = {"a", "", ""};
  EXPECT_EQ(header(format, false), declaration + "<!DOCTYPE a?>");
  format.doctype = {"a", "", "s"};
  EXPECT_EQ(header(format, true), declaration + "\n<!DOCTYPE a SYSTEM \"s\"?>\n");
  format.doctype = {"a", "p", "s"};
  EXPECT_EQ(header(format, false), declaration + "<!DOCTYPE a PUBLIC \"p\" \"s\"?>");
  EXPECT_EQ(header(format, true), declaration + "\n<!DOCTYPE a PUBLIC \"p\"\n \"s\"?>\n");
  format.doctype = {"", "p", "s"};
  EXPECT_EQ(header(format, false), declaration);
}

TEST(XMLFormat, PrintsStyleSheetsWithWhatTheyHave) {
  XMLFormat format;
  format.stylesheets = {{"h", "t"}, {"h", "t", "a", "b", "c", true}, {"", "", "", "b"}};
  EXPECT_EQ(header(format, true),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<?xml-stylesheet href=\"h\" type=\"t\"?>\n"
            "<?xml-stylesheet href=\"h\" type=\"t\" title=\"a\" media=\"b\" charset=\"c\""
            " alternate=\"yes\"?>\n"
            "<?xml-stylesheet href=\"\" type=\"\" media=\"b\"?>\n");
}

}  // namespace
}  // namespace Trellis
