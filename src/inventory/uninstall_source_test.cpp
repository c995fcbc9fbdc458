#include "inventory/uninstall_source.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "orlo/datetime.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"

namespace {

using Field = PackageColumn;

constexpr char kUninstall[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr char kUserKey[] =
    "HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr char kCacheKey[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\App "
    "Management\\ARPCache";

/// A usage record as the system writes it.
struct UsageBytes {
  uint32_t size = 552;
  uint32_t has_name = 0;
  int64_t installed = -1;
  uint64_t last_used = 0;
  uint32_t frequency = 0xFFFFFFFF;
  std::u16string name;

  std::string bytes() const {
    std::string data(552, '\0');
    std::memcpy(&data[0], &size, 4);
    std::memcpy(&data[4], &has_name, 4);
    std::memcpy(&data[8], &installed, 8);
    std::memcpy(&data[16], &last_used, 8);
    std::memcpy(&data[24], &frequency, 4);
    std::memcpy(&data[28], name.data(), name.size() * 2);
    return data;
  }
};

/// A current-user Uninstall key (one view only) and what the source makes of it.
class UninstallSourceTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return std::string(kUserKey) + "\\" + name; }
  void add(const std::string& name) {
    registry_.create(path(name));
    registry_.set_last_write(path(name), 0);
  }
  void text(const std::string& name, const char* value, std::u16string_view data) {
    registry_.set_text(path(name), value, data);
    registry_.set_last_write(path(name), 0);
  }
  void number(const std::string& name, const char* value, uint32_t data) {
    registry_.set_number(path(name), value, data);
    registry_.set_last_write(path(name), 0);
  }
  void usage(const std::string& name, const UsageBytes& record) {
    registry_.set_raw(std::string(kCacheKey) + "\\" + name, "SlowInfoCache", kRegBinary,
                      record.bytes());
  }

  const std::vector<Row>& read(bool is64BitView = false) {
    rows_.clear();
    RegistryKey key;
    EXPECT_EQ(registry_.open(kCurrentUser, kUninstall, kKeyRead, key), kRegSuccess);
    UninstallSource source(registry_, files_, ORLO::system_clock());
    source.readUninstallKey(kCurrentUser, key, unseen_, is64BitView,
                            [this](const Row& row) { rows_.push_back(row); });
    return rows_;
  }
  std::string value(size_t row, Field column) const {
    return cell(rows_.at(row), column).text.c_str();
  }

  MemoryRegistry registry_;
  MemoryFiles files_;
  std::set<RowKey> unseen_;
  std::vector<Row> rows_;
};

TEST_F(UninstallSourceTest, CopiesTheTextValues) {
  text("App", "DisplayName", u"Name");
  text("App", "DisplayVersion", u"1.2");
  text("App", "InstallLocation", u"C:\\App");
  text("App", "ModifyPath", u"mod");
  text("App", "Comments", u"remark");
  text("App", "Publisher", u"Maker");
  text("App", "Contact", u"someone");
  text("App", "HelpLink", u"http://help.example");
  text("App", "HelpTelephone", u"123");
  text("App", "URLInfoAbout", u"http://about.example");
  text("App", "URLUpdateInfo", u"http://update.example");
  text("App", "ParentKeyName", u"Parent");
  text("App", "ParentDisplayName", u"Parent Name");
  text("App", "DisplayIcon", u"C:\\App\\a.ico");
  text("App", "UninstallString", u"un");
  ASSERT_EQ(read().size(), 1u);
  const std::pair<Field, const char*> expected[] = {
      {Field::name, "App"},
      {Field::keyName, "App"},
      {Field::source, "HKCU Uninstall"},
      {Field::HKEY_ROOT, "-2147483647"},
      {Field::displayName, "Name"},
      {Field::displayVersion, "1.2"},
      {Field::installLocation, "C:\\App"},
      {Field::modifyCmd, "mod"},
      {Field::comments, "remark"},
      {Field::publisher, "Maker"},
      {Field::contact, "someone"},
      {Field::helpURL, "http://help.example"},
      {Field::helpPhone, "123"},
      {Field::aboutURL, "http://about.example"},
      {Field::updateURL, "http://update.example"},
      {Field::parent, "Parent"},
      {Field::parentName, "Parent Name"},
      {Field::displayIcon, "C:\\App\\a.ico"},
      {Field::uninstallCmd, "un"},
      {Field::uninstallDate, "31.12.2099"},
      {Field::is64Bit, "0"},
      {Field::size, "-1"},
      {Field::MSI, "0"},
      {Field::noRemove, "0"},
      {Field::lastUseDate, ""},
      {Field::frequency, ""},
      {Field::user, ""},
      {Field::changed, ""},
  };
  for (const auto& [column, expected_text] : expected) {
    SCOPED_TRACE(static_cast<int>(column));
    EXPECT_EQ(value(0, column), expected_text);
  }
}

TEST_F(UninstallSourceTest, ReadsNumbersFromFourBytesOfAnyType) {
  number("App", "EstimatedSize", 2048);
  number("App", "SystemComponent", 1);
  registry_.set_raw(path("App"), "NoModify", kRegBinary, std::string("\x02\x01", 2));
  registry_.set_raw(path("App"), "NoRemove", kRegQword, std::string(8, '\x01'));
  read();
  EXPECT_EQ(value(0, Field::size), "2048");
  EXPECT_EQ(value(0, Field::systemComponent), "1");
  EXPECT_EQ(value(0, Field::noModify), "258") << "a shorter value fills the low bytes";
  EXPECT_EQ(value(0, Field::noRemove), "0") << "a longer value can't be read";
}

TEST_F(UninstallSourceTest, SplitsTheNameOfAPackageUnderAnother) {
  struct Case {
    const char* name;
    const char* key_name;
    const char* parent;
  };
  const Case cases[] = {
      {"{1234}.KB123", "KB123", "1234"}, {"{1234}.", "", "1234"},     {"{1234}", "{1234}", "said"},
      {"x{1}.y", "x{1}.y", "said"},      {"{a}.{b}.c", "{b}.c", "a"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    registry_.remove(kUserKey);
    text(c.name, "ParentKeyName", u"said");
    ASSERT_EQ(read().size(), 1u);
    EXPECT_EQ(value(0, Field::name), c.name);
    EXPECT_EQ(value(0, Field::keyName), c.key_name);
    EXPECT_EQ(value(0, Field::parent), c.parent);
  }
}

TEST_F(UninstallSourceTest, TextEndsAtItsFirstNul) {
  registry_.set_text(path("App"), "DisplayName", std::u16string_view(u"Na\0me", 5));
  registry_.set_raw(path("App"), "Publisher", kRegBinary, std::string("Ma\0ker", 6));
  read();
  EXPECT_EQ(value(0, Field::displayName), "Na");
  EXPECT_EQ(value(0, Field::publisher), "Ma");
}

TEST_F(UninstallSourceTest, TextOfAnyLengthIsReadWhole) {
  for (const size_t length :
       {size_t{0}, size_t{1023}, size_t{1024}, size_t{1025}, size_t{500000}}) {
    SCOPED_TRACE(length);
    text("App", "Comments", std::u16string(length, u'x'));
    read();
    EXPECT_EQ(value(0, Field::comments), std::string(length, 'x'));
  }
}

TEST_F(UninstallSourceTest, CheckStateFollowsCommandAndFlags) {
  struct Case {
    const char16_t* uninstall;
    uint32_t msi;
    uint32_t no_remove;
    const char* state;
  };
  const Case cases[] = {
      {u"", 0, 0, "0"},
      {u"", 0, 1, "0"},
      {u"gone.exe", 0, 0, "1"},
      {u"gone.exe", 0, 1, "-2"},
      {u"", 1, 0, "-1"},
      {u"", 1, 1, "-2"},
      {u"MsiExec.exe /I{123}", 1, 0, "-1"},
      {u"MsiExec.exe /X{123}", 1, 0, "1"},
      {u"MsiExec.exe /I{123}", 0, 0, "1"},
  };
  for (const Case& c : cases) {
    text("App", "UninstallString", c.uninstall);
    number("App", "WindowsInstaller", c.msi);
    number("App", "NoRemove", c.no_remove);
    read();
    EXPECT_EQ(value(0, Field::OK), c.state)
        << value(0, Field::uninstallCmd) << " msi " << c.msi << " noRemove " << c.no_remove;
  }
}

TEST_F(UninstallSourceTest, InstallerPathIsThatOfTheUninstallCommandElseOfTheModifyCommand) {
  files_.add_file("C:\\App\\un.exe");
  files_.add_file("C:\\App\\mod.exe");
  text("App", "ModifyPath", u"C:\\App\\mod.exe /m");
  read();
  EXPECT_EQ(value(0, Field::installerPath), "C:\\App\\mod.exe");
  text("App", "UninstallString", u"C:\\App\\un.exe /u");
  read();
  EXPECT_EQ(value(0, Field::installerPath), "C:\\App\\un.exe");
}

TEST_F(UninstallSourceTest, UnreadableDateWithoutWriteTimeStandsAsItIs) {
  // A file time of 0 is the year 1601, which is a date; from 2^63 on there is none.
  text("App", "InstallDate", u"some day");
  registry_.set_last_write(path("App"), 0xF000000000000000);
  read();
  EXPECT_EQ(value(0, Field::installDate), "some day");
}

TEST_F(UninstallSourceTest, DwordDateOfZeroIsTheFirstOfJanuary1970Local) {
  number("App", "InstallDate", 0);
  read();
  DateTime expected;
  expected.time.wYear = 1970;
  expected.time.wMonth = 1;
  expected.time.wDay = 1;
  expected.zone = 60;
  EXPECT_EQ(value(0, Field::installDate), expected.display().c_str());
}

TEST_F(UninstallSourceTest, DwordDateBeyond2038IsADate) {
  number("App", "InstallDate", 0xFFFFFFFF);  // 7 February 2106, 06:28:15 UTC
  read();
  EXPECT_NE(value(0, Field::installDate).find("2106"), std::string::npos);
}

TEST_F(UninstallSourceTest, LastWriteTimeStandsInForAMissingDate) {
  add("App");
  registry_.set_last_write(path("App"), 128763036000000000);  // 13 January 2009, 07:00 UTC
  read();
  EXPECT_NE(value(0, Field::installDate).find("2009 "), std::string::npos)
      << value(0, Field::installDate);
}

TEST_F(UninstallSourceTest, SubkeyWithoutUsageRecordShowsThatOfItsPredecessor) {
  add("a");
  add("b");
  UsageBytes record;
  record.frequency = 17;
  record.last_used = 128763036000000000;
  usage("a", record);
  ASSERT_EQ(read().size(), 2u);
  EXPECT_EQ(value(0, Field::frequency), "17");
  EXPECT_EQ(value(1, Field::frequency), "17");
  EXPECT_EQ(value(0, Field::lastUseDate), "13.01.2009 08:00:00");
  EXPECT_EQ(value(1, Field::lastUseDate), "13.01.2009 08:00:00");
}

TEST_F(UninstallSourceTest, UsageRecordOverridesTheEstimatedSize) {
  number("App", "EstimatedSize", 5);
  UsageBytes record;
  record.installed = 10 * 1024 + 511;
  usage("App", record);
  read();
  EXPECT_EQ(value(0, Field::size), "10");
  record.installed = 10 * 1024 + 512;
  usage("App", record);
  read();
  EXPECT_EQ(value(0, Field::size), "11");
}

TEST_F(UninstallSourceTest, UsageRecordOfAnotherSizeIsIgnored) {
  number("App", "EstimatedSize", 5);
  UsageBytes record;
  record.installed = 10240;
  record.size = 551;
  usage("App", record);
  read();
  EXPECT_EQ(value(0, Field::size), "5");
  record.size = 552;
  registry_.set_raw(std::string(kCacheKey) + "\\App", "SlowInfoCache", kRegBinary,
                    record.bytes().substr(0, 551));
  read();
  EXPECT_EQ(value(0, Field::size), "5");
}

TEST_F(UninstallSourceTest, MainFileReplacesAnIconThatIsNotThere) {
  UsageBytes record;
  record.has_name = 1;
  record.name = u"C:\\App\\main.exe";
  usage("App", record);
  text("App", "DisplayIcon", u"\"C:\\App\\x.exe\",2");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), "C:\\App\\main.exe");
  files_.add_file("C:\\App\\x.exe");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), "\"C:\\App\\x.exe\",2");
  text("App", "DisplayIcon", u"");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), "C:\\App\\main.exe");
}

TEST_F(UninstallSourceTest, MainFileWithoutTerminatorIsBounded) {
  UsageBytes record;
  record.has_name = 1;
  record.name = std::u16string(262, u'x');
  usage("App", record);
  add("App");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), std::string(262, 'x'));
}

TEST_F(UninstallSourceTest, ErasesWhatItSeesFromTheUnseenKeys) {
  add("App");
  unseen_.insert(RowKey{{"-2147483647", "App"}});
  unseen_.insert(RowKey{{"-2147483647", "Gone"}});
  read();
  ASSERT_EQ(unseen_.size(), 1u);
  EXPECT_STREQ(unseen_.begin()->texts[1].c_str(), "Gone");
}

TEST_F(UninstallSourceTest, RowsOfThe64BitViewSaySo) {
  add("App");
  read(true);
  EXPECT_EQ(value(0, Field::is64Bit), "1");
  EXPECT_EQ(cell(rows_[0], Field::is64Bit).integer(), 1);
}

TEST_F(UninstallSourceTest, SubkeyThatCannotBeOpenedIsSkipped) {
  add("a");
  add("b");
  add("c");
  registry_.fail("open", "b", kRegAccessDenied);
  ASSERT_EQ(read().size(), 2u);
  EXPECT_EQ(value(1, Field::name), "c");
}

TEST_F(UninstallSourceTest, WalkEndsAtTheFirstErrorOfAnyKind) {
  add("a");
  add("b");
  registry_.fail("subkey_at", "", kRegAccessDenied, -1);
  EXPECT_TRUE(read().empty());
}

TEST_F(UninstallSourceTest, KeyThatCannotBeQueriedGivesNothing) {
  add("a");
  registry_.fail("info", "", kRegAccessDenied);
  EXPECT_TRUE(read().empty());
}

TEST_F(UninstallSourceTest, LeavesNoKeyOpen) {
  add("a");
  usage("a", UsageBytes());
  read();
  EXPECT_EQ(registry_.open_keys(), 0u);
}

}  // namespace
