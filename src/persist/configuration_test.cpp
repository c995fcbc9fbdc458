#include "persist/configuration.h"

#include <set>

#include "persist/own_document_test_support.h"

namespace {

class ConfigurationTest : public OwnDocumentTest {
 protected:
  ConfigurationTest() {
    para_.cfgPath = path_;
    para_.windowPos = "1/2/303/404 - 1";
    para_.langId = kLangGerman;
    para_.colorBackground = true;
  }
  bool read(const std::string& file) {
    put(file);
    return readConfiguration(para_);
  }
  /// The three settings in one text.
  std::string settings() const {
    return std::string(para_.windowPos.c_str()) + '|' + std::to_string(para_.langId) + '|' +
           (para_.colorBackground ? "colours" : "plain");
  }
  static inline const std::string kUntouched = "1/2/303/404 - 1|7|colours";
  UninstallPara para_;
};

TEST_F(ConfigurationTest, IsWrittenByteForByte) {
  writeConfiguration(para_);
  EXPECT_EQ(content(), own_document("<ui lang-id=\"7\" window-pos=\"1/2/303/404 - 1\"/>"
                                    "<flags color-bkgnd=\"true\"/>"));
}

TEST_F(ConfigurationTest, EmptyPlaceIsLeftOut) {
  para_.windowPos = "";
  para_.colorBackground = false;
  writeConfiguration(para_);
  EXPECT_EQ(content(), own_document("<ui lang-id=\"7\"/><flags color-bkgnd=\"false\"/>"));
  para_.windowPos = "9/9/9/9 - 9";
  EXPECT_TRUE(readConfiguration(para_));
  EXPECT_EQ(settings(), "|7|plain");
}

TEST_F(ConfigurationTest, GivesBackWhatWasWritten) {
  for (const bool colours : {true, false}) {
    for (const int langId : {7, 9, 12, 0, 65535}) {
      para_.windowPos = "-8/-8/1288/1032 - 3";
      para_.langId = static_cast<uint16_t>(langId);
      para_.colorBackground = colours;
      const std::string written = settings();
      writeConfiguration(para_);
      UninstallPara other;
      other.cfgPath = path_;
      para_ = other;
      EXPECT_TRUE(readConfiguration(para_));
      EXPECT_EQ(settings(), written);
    }
  }
}

TEST_F(ConfigurationTest, PlaceWithMarkupComesBack) {
  para_.windowPos = "<a href='x'>&amp;\" \xe4\x80";
  const std::string written = settings();
  writeConfiguration(para_);
  para_.windowPos = "";
  EXPECT_TRUE(readConfiguration(para_));
  EXPECT_EQ(settings(), written);
}

TEST_F(ConfigurationTest, MissingFileChangesNothing) {
  EXPECT_FALSE(readConfiguration(para_));
  EXPECT_EQ(settings(), kUntouched);
}

TEST_F(ConfigurationTest, MalformedFileChangesNothing) {
  EXPECT_FALSE(read(own_document("<ui lang-id=9 window-pos=\"5/6/7/8 - 9\"/>")));
  EXPECT_EQ(settings(), kUntouched);
}

TEST_F(ConfigurationTest, FileWithoutItsRootChangesNothing) {
  EXPECT_TRUE(read(""));
  EXPECT_TRUE(read(kDeclaration + "<other version=\"5.3\"><ui lang-id=\"9\"/></other>"));
  EXPECT_EQ(settings(), kUntouched);
}

TEST_F(ConfigurationTest, NewerVersionChangesNothing) {
  for (const char* version : {"5.4", "6", "5.3.1", "10.0"}) {
    EXPECT_FALSE(read(kDeclaration + "<zolvane version=\"" + version +
                      "\"><ui lang-id=\"9\"/><flags/></zolvane>"))
        << version;
  }
  EXPECT_EQ(settings(), kUntouched);
}

TEST_F(ConfigurationTest, OlderOrMissingVersionIsRead) {
  for (const char* version : {" version=\"5.2\"", " version=\"\"", "", " version=\"4\""}) {
    para_.langId = kLangGerman;
    EXPECT_TRUE(read(kDeclaration + "<zolvane" + version + "><ui lang-id=\"9\"/></zolvane>"))
        << version;
    EXPECT_EQ(para_.langId, kLangEnglish) << version;
  }
}

TEST_F(ConfigurationTest, WithoutFlagsTheColoursStay) {
  for (const bool colours : {true, false}) {
    para_.colorBackground = colours;
    EXPECT_TRUE(read(own_document("<ui lang-id=\"9\"/>")));
    EXPECT_EQ(para_.colorBackground, colours);
  }
}

TEST_F(ConfigurationTest, FlagsWithoutTheirAttributeMeanNoColours) {
  EXPECT_TRUE(read(own_document("<flags/>")));
  EXPECT_FALSE(para_.colorBackground);
}

TEST_F(ConfigurationTest, OnlyTrueIsTrue) {
  for (const char* text : {"True", "1", "yes", "true ", " true", "false", ""}) {
    para_.colorBackground = true;
    EXPECT_TRUE(read(own_document(std::string("<flags color-bkgnd=\"") + text + "\"/>")));
    EXPECT_FALSE(para_.colorBackground) << text;
  }
  EXPECT_TRUE(read(own_document("<flags color-bkgnd=\"true\"/>")));
  EXPECT_TRUE(para_.colorBackground);
}

TEST_F(ConfigurationTest, MissingOrEmptyLanguageStays) {
  for (const char* node : {"<ui/>", "<ui lang-id=\"\"/>"}) {
    EXPECT_TRUE(read(own_document(node)));
    EXPECT_EQ(settings(), "|7|colours") << node;
  }
}

TEST_F(ConfigurationTest, LanguageIsADecimalOf16Bits) {
  const struct {
    const char* text;
    int langId;
  } rows[] = {{"german", 0}, {"12", 12}, {" 9x", 9}, {"-1", 65535}, {"65543", 7}};
  for (const auto& row : rows) {
    EXPECT_TRUE(read(own_document(std::string("<ui lang-id=\"") + row.text + "\"/>")));
    EXPECT_EQ(para_.langId, row.langId) << row.text;
  }
}

TEST_F(ConfigurationTest, FileThatCannotBeWrittenIsNoTrouble) {
  put("");
  para_.cfgPath = String(std::string(path_.c_str()) + "/file.xml");
  writeConfiguration(para_);
  para_.cfgPath = "";
  writeConfiguration(para_);
  EXPECT_FALSE(readConfiguration(para_));
}

TEST_F(ConfigurationTest, EveryCutOfTheFileLeavesSettingsThatWork) {
  writeConfiguration(para_);
  const std::string whole = content();
  const NoReports quiet;
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(whole.substr(0, length));
    para_.windowPos = "5/6/7/8 - 1";
    para_.langId = kLangEnglish;
    para_.colorBackground = false;
    if (!read(whole.substr(0, length))) {
      EXPECT_EQ(settings(), "5/6/7/8 - 1|9|plain");
    }
    // A cut behind an element or one of its attributes leaves what stands before it.
    EXPECT_TRUE(std::set<std::string>({"5/6/7/8 - 1", "1/2/303/404 - 1", ""})
                    .contains(para_.windowPos.c_str()));
    EXPECT_TRUE(para_.langId == kLangEnglish || para_.langId == kLangGerman);
    writeConfiguration(para_);
    EXPECT_TRUE(readConfiguration(para_));
  }
}

TEST_F(ConfigurationTest, DamagedFileLeavesSettingsThatWork) {
  writeConfiguration(para_);
  const std::string whole = content();
  const NoReports quiet;
  std::mt19937 random(20091124);
  size_t untouched = 0;
  for (int round = 0; round < 1000; ++round) {
    const std::string file = damaged(whole, random);
    SCOPED_TRACE(file);
    para_.windowPos = "5/6/7/8 - 1";
    para_.langId = kLangEnglish;
    para_.colorBackground = false;
    if (!read(file)) {
      ++untouched;
      ASSERT_EQ(settings(), "5/6/7/8 - 1|9|plain");
    }
    writeConfiguration(para_);
    ASSERT_TRUE(readConfiguration(para_));
    const std::string kept = settings();
    writeConfiguration(para_);
    ASSERT_TRUE(readConfiguration(para_));
    ASSERT_EQ(settings(), kept);
  }
  EXPECT_GT(untouched, 100u);
}

TEST_F(ConfigurationTest, FirstOfElementsWithOneNameCounts) {
  EXPECT_TRUE(
      read(own_document("<ui lang-id=\"9\"/><ui lang-id=\"7\" window-pos=\"5/6/7/8 - 1\"/>"
                        "<flags/><flags color-bkgnd=\"true\"/>")));
  EXPECT_EQ(settings(), "|9|plain");
}

}  // namespace
