#include "update/pad_reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "inventory/text_helpers.h"
#include "orlo/assertion.h"
#include "orlo/report_test_support.h"
#include "orlo/system_time.h"
#include "update/pad_test_support.h"

namespace {

constexpr size_t kMegabyte = size_t{1} << 20;

PadInfo good_info(const std::string& text) {
  const ReadPad read = read_pad_text(text);
  EXPECT_TRUE(read.good);
  return read.info;
}

PadInfo in_root(const std::string& content) {
  return good_info("<XML_DIZ_INFO>" + content + "</XML_DIZ_INFO>");
}

std::string text_of(const String& text) {
  return std::string(text.c_str(), text.length());
}

std::string shown(const PadInfo& info, const char* version = "5.3",
                  const char* system = "WIN6.1.7601") {
  return text_of(messagesFor(info, version, system));
}

TEST(PadReader, ReadsEveryFieldFromItsElement) {
  const PadInfo info = good_info(PadText().xml());
  EXPECT_STREQ(info.programName.c_str(), "Zolvane");
  EXPECT_STREQ(info.programVersion.c_str(), "5.4");
  EXPECT_EQ(info.releaseDate.year, 2026);
  EXPECT_EQ(info.releaseDate.month, 11);
  EXPECT_EQ(info.releaseDate.day, 5);
  EXPECT_EQ(info.fileSize, 123456);
  EXPECT_STREQ(info.infoPageUrl.c_str(), "");
  EXPECT_STREQ(info.downloadUrl.c_str(), "http://download.example/files/setup.exe");
  EXPECT_STREQ(info.companyName.c_str(), "Quillmere");
  EXPECT_STREQ(info.companyWebsite.c_str(), "http://company.example/");
  EXPECT_STREQ(info.author.first_name.c_str(), "Ada");
  EXPECT_STREQ(info.author.last_name.c_str(), "Byron");
  EXPECT_STREQ(info.author.mail.c_str(), "ada@author.example");
  EXPECT_STREQ(info.contact.first_name.c_str(), "Charles");
  EXPECT_STREQ(info.contact.last_name.c_str(), "Babbage");
  EXPECT_STREQ(info.contact.mail.c_str(), "charles@contact.example");
  EXPECT_TRUE(info.messages.empty());
}

TEST(PadReader, FillsNoInfoPageFromTheElementOfThatName) {
  const PadInfo info = in_root(
      "<Web_Info><Application_URLs><Application_Info_URL>http://page.example/"
      "</Application_Info_URL></Application_URLs></Web_Info>");
  EXPECT_TRUE(info.infoPageUrl.empty());
}

TEST(PadReader, LeavesMissingElementsEmpty) {
  const PadInfo info = in_root("");
  EXPECT_TRUE(info.programName.empty());
  EXPECT_TRUE(info.programVersion.empty());
  EXPECT_EQ(info.releaseDate.year, 0);
  EXPECT_EQ(info.releaseDate.month, 0);
  EXPECT_EQ(info.releaseDate.day, 0);
  EXPECT_EQ(info.fileSize, 0);
  EXPECT_TRUE(info.downloadUrl.empty());
  EXPECT_TRUE(info.companyName.empty());
  EXPECT_TRUE(info.author.first_name.empty());
}

TEST(PadReader, ReadsCompanyAddressAndMessagesWithoutProgramInfo) {
  const PadInfo info = in_root(
      "<Company_Info><Company_Name>Quillmere</Company_Name></Company_Info>"
      "<Web_Info><Download_URLs><Primary_Download_URL>http://a.example/s.exe"
      "</Primary_Download_URL></Download_URLs></Web_Info>"
      "<qm:messages><qm:msg>News</qm:msg></qm:messages>");
  EXPECT_TRUE(info.programVersion.empty());
  EXPECT_STREQ(info.companyName.c_str(), "Quillmere");
  EXPECT_STREQ(info.downloadUrl.c_str(), "http://a.example/s.exe");
  EXPECT_EQ(shown(info), "News");
}

TEST(PadReader, ReadsTheCompanyWithoutAContact) {
  const PadInfo info = in_root(
      "<Company_Info><Company_WebSite_URL>http://c.example</Company_WebSite_URL></Company_Info>"
      "<Contact_Info><Author_Email>elsewhere</Author_Email></Contact_Info>");
  EXPECT_STREQ(info.companyWebsite.c_str(), "http://c.example");
  EXPECT_TRUE(info.author.mail.empty());
}

TEST(PadReader, LooksForTheAddressBelowTheRootOnly) {
  const PadInfo info = in_root(
      "<Program_Info><Web_Info><Download_URLs><Primary_Download_URL>http://wrong.example"
      "</Primary_Download_URL></Download_URLs></Web_Info></Program_Info>");
  EXPECT_TRUE(info.downloadUrl.empty());
}

TEST(PadReader, TakesTheFirstElementOfAName) {
  const PadInfo info = in_root(
      "<Program_Info><Program_Version>1</Program_Version><Program_Version>2</Program_Version>"
      "</Program_Info><Program_Info><Program_Version>3</Program_Version></Program_Info>");
  EXPECT_STREQ(info.programVersion.c_str(), "1");
}

TEST(PadReader, RefusesADocumentWithoutItsRoot) {
  EXPECT_FALSE(read_pad_text("").good);
  EXPECT_FALSE(read_pad_text("no XML at all").good);
  EXPECT_FALSE(read_pad_text("<xml_diz_info></xml_diz_info>").good);
  EXPECT_FALSE(read_pad_text("<html><XML_DIZ_INFO></XML_DIZ_INFO></html>").good);
  EXPECT_FALSE(read_pad_text("<html><head><title>404 Not Found</title></head></html>").good);
}

TEST(PadReader, RefusesADocumentWithAnErrorThatHasItsRoot) {
  EXPECT_FALSE(read_pad_text("<XML_DIZ_INFO><a b></a></XML_DIZ_INFO>").good);
  EXPECT_FALSE(read_pad_text("<XML_DIZ_INFO><a b=\"1></a></XML_DIZ_INFO>").good);
}

TEST(PadReader, FindsARootThatIsNotTheFirstElement) {
  EXPECT_TRUE(read_pad_text("<other></other><XML_DIZ_INFO></XML_DIZ_INFO>").good);
}

TEST(PadReader, ReadsNumbersUpToTheFirstOtherCharacter) {
  PadText text;
  text.year = " \t2026x";
  text.month = "03";
  text.day = "-1";
  text.size = "266,752";
  const PadInfo info = good_info(text.xml());
  EXPECT_EQ(info.releaseDate.year, 2026);
  EXPECT_EQ(info.releaseDate.month, 3);
  EXPECT_EQ(info.releaseDate.day, 65535);
  EXPECT_EQ(info.fileSize, 266);
}

TEST(PadReader, WrapsNumbersBeyondTheirRange) {
  PadText text;
  text.year = "99999";
  text.month = "65537";
  text.day = "99999999999999999999999999";
  text.size = "4294967297";
  const PadInfo info = good_info(text.xml());
  EXPECT_EQ(info.releaseDate.year, 99999 - 65536);
  EXPECT_EQ(info.releaseDate.month, 1);
  EXPECT_EQ(info.releaseDate.day, 0xFFFF);
  EXPECT_EQ(info.fileSize, 1);
}

TEST(PadReader, TakesANumberThatIsNoneForZero) {
  PadText text;
  text.year = "next year";
  text.size = "large";
  const PadInfo info = good_info(text.xml());
  EXPECT_EQ(info.releaseDate.year, 0);
  EXPECT_EQ(info.fileSize, 0);
}

TEST(PadReader, ReadsTextIntoTheCodePage) {
  PadText text;
  text.name = "Gr\xc3\xbc\xc3\x9f\x65";
  text.messages = "<qm:msg>\xe2\x82\xac \xd0\x96</qm:msg>";
  const PadInfo info = good_info(text.xml());
  EXPECT_EQ(text_of(info.programName), "Gr\xfc\xdf\x65");
  EXPECT_EQ(shown(info), "\x80 ?");
}

TEST(PadReader, TakesBytesOfAnotherEncodingForTheCodePage) {
  // The name of an encoding only tells whether the bytes are UTF-8.
  for (const char* name : {"Windows-1252", "utf-16", "ebcdic", "%s", ""}) {
    SCOPED_TRACE(name);
    const PadInfo info =
        good_info("<?xml version=\"1.0\" encoding=\"" + std::string(name) +
                  "\"?><XML_DIZ_INFO><Program_Info><Program_Name>Gr\xfc\xc3\xbc\xdf\x65"
                  "</Program_Name></Program_Info></XML_DIZ_INFO>");
    EXPECT_EQ(text_of(info.programName), "Gr\xfc\xc3\xbc\xdf\x65");
  }
}

TEST(PadReader, BearsBytesThatAreNoUtf8) {
  PadText text;
  text.name = "a\xff\xc3";
  EXPECT_EQ(text_of(good_info(text.xml()).programName), "a??");
}

TEST(PadReader, BearsSixteenBitText) {
  std::string wide;
  for (const char c : PadText().xml()) {
    wide += c;
    wide += '\0';
  }
  EXPECT_FALSE(read_pad_text("\xff\xfe" + wide).good);
}

/// In a document of this program the library would report it; a server may send what it likes.
class PadReaderAssertion : public testing::Test {
 protected:
  PadReaderAssertion() { ORLO::forget_failed_assertions(); }
  ~PadReaderAssertion() override { ORLO::forget_failed_assertions(); }
  const ORLO::TestReports reports_;
};

TEST_F(PadReaderAssertion, IsNotToldForEndTagsThatEndNothing) {
  for (int i = 0; i < 2; ++i)
    EXPECT_FALSE(read_pad_text("</html></html>").good);
  EXPECT_TRUE(read_pad_text("</a><XML_DIZ_INFO></XML_DIZ_INFO></b>").good);
  EXPECT_TRUE(reports_.shown.empty());
}

TEST_F(PadReaderAssertion, IsNotToldForAnotherEncodingThanThatOfTheMark) {
  const PadInfo info = good_info(
      "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"utf-16\"?><XML_DIZ_INFO>"
      "<Company_Info><Company_Name>\xc3\xbc</Company_Name></Company_Info></XML_DIZ_INFO>");
  EXPECT_STREQ(info.companyName.c_str(), "\xfc");
  EXPECT_TRUE(reports_.shown.empty());
}

TEST(PadReader, DropsBlanksAtTheEndOfAText) {
  PadText text;
  text.name = " Zolvane \n\t";
  EXPECT_EQ(text_of(good_info(text.xml()).programName), " Zolvane");
}

TEST(PadReader, ReadsEntitiesAndCdataSections) {
  PadText text;
  text.name = "A &amp; B &lt;C&gt; &quot;D&quot; &#65;";
  text.messages = "<qm:msg><![CDATA[ <b> \n]]></qm:msg><qm:msg>a <![CDATA[&lt;]]> b</qm:msg>";
  const PadInfo info = good_info(text.xml());
  EXPECT_EQ(text_of(info.programName), "A & B <C> \"D\" &#65;");
  EXPECT_EQ(shown(info), " <b> \n\n\na &lt; b");
}

TEST(PadReader, TakesTheTextInFrontOfTheFirstChild) {
  PadText text;
  text.messages = "<qm:msg>one<br/>two</qm:msg>";
  EXPECT_EQ(shown(good_info(text.xml())), "one");
}

TEST(PadReader, KeepsMessagesInTheOrderOfTheDocument) {
  const PadInfo info = in_root(
      "<qm:messages><other>x</other><qm:msg version=\"5.3\" id=\"WIN1\">b</qm:msg>"
      "<qm:msg>a</qm:msg><qm:msg id='&lt;'/></qm:messages>"
      "<qm:messages><qm:msg>not this one</qm:msg></qm:messages><qm:msg>nor this</qm:msg>");
  ASSERT_EQ(info.messages.size(), 3u);
  EXPECT_STREQ(info.messages[0].version.c_str(), "5.3");
  EXPECT_STREQ(info.messages[0].id.c_str(), "WIN1");
  EXPECT_STREQ(info.messages[0].text.c_str(), "b");
  EXPECT_TRUE(info.messages[1].version.empty());
  EXPECT_TRUE(info.messages[1].id.empty());
  EXPECT_STREQ(info.messages[1].text.c_str(), "a");
  EXPECT_STREQ(info.messages[2].id.c_str(), "<");
  EXPECT_TRUE(info.messages[2].text.empty());
}

TEST(PadReader, AppendsMessagesToThoseThatAreThere) {
  PadInfo info;
  info.messages.push_back({"", "", "first"});
  std::stringstream stream(
      "<XML_DIZ_INFO><qm:messages><qm:msg>second</qm:msg></qm:messages></XML_DIZ_INFO>");
  ASSERT_TRUE(read_pad(stream, info));
  EXPECT_EQ(shown(info), "first\n\nsecond");
}

TEST(PadReader, LeavesWhatItCannotUseUntouched) {
  PadInfo info;
  info.programName = "before";
  std::stringstream stream("<other></other>");
  EXPECT_FALSE(read_pad(stream, info));
  EXPECT_STREQ(info.programName.c_str(), "before");
}

TEST(PadReader, BearsAMegabyteOfNesting) {
  std::string text = "<XML_DIZ_INFO>";
  while (text.size() < kMegabyte)
    text += "<a>";
  EXPECT_TRUE(read_pad_text(text).good);
  std::string begins = "<XML_DIZ_INFO>";
  std::string ends;
  while (begins.size() < kMegabyte) {
    begins += "<Program_Info>";
    ends += "</Program_Info>";
  }
  EXPECT_TRUE(read_pad_text(begins + ends + "</XML_DIZ_INFO>").good);
}

TEST(PadReader, BearsAMegabyteOfAttributesAndOfOneTag) {
  std::string tag = "<XML_DIZ_INFO";
  for (int i = 0; tag.size() < kMegabyte; ++i)
    tag += " a" + std::to_string(i) + "='x'";
  EXPECT_TRUE(read_pad_text(tag + "></XML_DIZ_INFO>").good);
  EXPECT_TRUE(read_pad_text("<XML_DIZ_INFO></XML_DIZ_INFO>" + std::string(kMegabyte, '<')).good);
}

TEST(PadReader, ReadsVersionsOfTenThousandCharacters) {
  PadText text;
  text.version = std::string(10000, '9');
  const PadInfo digits = good_info(text.xml());
  EXPECT_EQ(text_of(digits.programVersion), text.version);
  text.version = "5.3";
  while (text.version.size() < 10000)
    text.version += ".0";
  const PadInfo parts = good_info(text.xml());
  EXPECT_EQ(text_of(parts.programVersion), text.version);
  EXPECT_LT(compareVersions("5.3", parts.programVersion), 0);
  EXPECT_EQ(compareVersions(digits.programVersion, digits.programVersion), 0);
}

TEST(PadReader, ReadsMessagesByTheThousand) {
  PadText text;
  for (int i = 0; i < 5000; ++i)
    text.messages += "<qm:msg version='" + std::to_string(i % 2) + "'>m</qm:msg>";
  const PadInfo info = good_info(text.xml());
  ASSERT_EQ(info.messages.size(), 5000u);
  EXPECT_EQ(shown(info, "1").size(), 2500u + 2499u * 2);
}

TEST(MessagesFor, ShowsAMessageOfAVersionToThatVersionOnly) {
  PadInfo info;
  info.messages.push_back({"5.3", "", "text"});
  EXPECT_EQ(shown(info, "5.3"), "text");
  EXPECT_EQ(shown(info, "5.30"), "");
  EXPECT_EQ(shown(info, "5.3.0"), "");
  EXPECT_EQ(shown(info, "5"), "");
  EXPECT_EQ(shown(info, ""), "");
}

TEST(MessagesFor, ShowsAMessageOfAnIdOnThatSystemAndBuildOnly) {
  PadInfo info;
  info.messages.push_back({"", "WIN6.1.7601", "text"});
  EXPECT_EQ(shown(info, "5.3", "WIN6.1.7601"), "text");
  EXPECT_EQ(shown(info, "5.3", "WIN6.1.7600"), "");
  EXPECT_EQ(shown(info, "5.3", "WIN6.1.760"), "");
  EXPECT_EQ(shown(info, "5.3", "win6.1.7601"), "");
  EXPECT_EQ(shown(info, "5.3", ""), "");
}

TEST(MessagesFor, ShowsAMessageWithBothWhereBothHold) {
  PadInfo info;
  info.messages.push_back({"5.3", "WIN6.1.7601", "text"});
  EXPECT_EQ(shown(info, "5.3", "WIN6.1.7601"), "text");
  EXPECT_EQ(shown(info, "5.2", "WIN6.1.7601"), "");
  EXPECT_EQ(shown(info, "5.3", "WIN6.1.7600"), "");
}

TEST(MessagesFor, AlwaysShowsAMessageWithNeither) {
  PadInfo info;
  info.messages.push_back({"", "", "text"});
  EXPECT_EQ(shown(info, "1", "a"), "text");
  EXPECT_EQ(shown(info, "", ""), "text");
}

TEST(MessagesFor, ComparesBytesThatFollowANul) {
  PadInfo info;
  info.messages.push_back({std::string("5.3\0x", 5), "", "text"});
  EXPECT_EQ(shown(info, "5.3"), "");
}

TEST(MessagesFor, PutsAnEmptyLineBetweenTwoTexts) {
  PadInfo info;
  EXPECT_EQ(shown(info), "");
  info.messages.push_back({"", "", ""});
  info.messages.push_back({"", "", "a"});
  info.messages.push_back({"9", "", "not shown"});
  info.messages.push_back({"", "", "b"});
  info.messages.push_back({"", "", ""});
  EXPECT_EQ(shown(info), "a\n\nb\n\n");
}

TEST(OfferedVersion, IsComparedByNumbersNotByText) {
  EXPECT_EQ(compareVersions("5.3", "5.3"), 0);
  EXPECT_LT(compareVersions("5.3", "5.10"), 0);
  EXPECT_LT(compareVersions("5.3", "5.3.1"), 0);
}

TEST(OfferedVersion, IsLessThanAnyIfTheDescriptionNamesNone) {
  PadText text;
  text.version = "";
  const PadInfo info = good_info(text.xml());
  EXPECT_TRUE(info.programVersion.empty());
  EXPECT_GT(compareVersions("5.3", info.programVersion), 0);
}

TEST(OfferedDate, IsEmptyWhereItIsNoDate) {
  // As the format engine has it, which is what shows a date.
  const ORLO::SystemTime years[] = {{0, 11, 0, 5}, {99999 - 65536, 11, 0, 5}, {0, 0, 0, 0}};
  for (const ORLO::SystemTime& time : years) {
    SCOPED_TRACE(time.wYear);
    EXPECT_STREQ(String::formatted("[%D]", &time).c_str(), "[]");
  }
}

}  // namespace
