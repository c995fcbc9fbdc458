#include "inventory/uninstall_source.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inventory/entry.h"
#include "inventory/hooked_registry_test_support.h"
#include "inventory/uninstall_test_support.h"
#include "orlo/datetime.h"
#include "orlo/fixed_clock.h"

namespace {

using Field = PackageColumn;

constexpr ORLO::FileTime kMorningOf13January2009 = 128763036000000000;  // 07:00 UTC

/// As the program shows a date of the zone that it is in.
std::string shown(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0,
                  uint16_t minute = 0) {
  DateTime date;
  date.time = {year, month, 0, day, hour, minute};
  return date.display().c_str();
}

class UninstallSourceTest : public UninstallBed {};

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
      {"x{1}.y", "x{1}.y", "said"},      {"{a}.{b}.c", "{b}.c", "a"}, {"{}.y", "y", ""},
      {"{a}b}.c", "c", "a}b"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    registry_.remove(std::string("HKEY_CURRENT_USER\\") + kUninstallBelowRoot);
    text(c.name, "ParentKeyName", u"said");
    ASSERT_EQ(read().size(), 1u);
    EXPECT_EQ(value(0, Field::name), c.name);
    EXPECT_EQ(value(0, Field::keyName), c.key_name);
    EXPECT_EQ(value(0, Field::parent), c.parent);
  }
}

TEST_F(UninstallSourceTest, NameThatOpensNoSubkeyGivesNoRow) {
  add("App\\App");
  add("App\uFF3C");     // told as "App\\"
  add("App\uFF3CApp");  // told as "App\\App"
  add("Other");
  NulNameRegistry registry(registry_);
  read_through(registry);
  EXPECT_EQ(names(), (std::vector<std::string>{"App", "Other"}));
  EXPECT_EQ(registry.open_keys(), 0);
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
      {u"MsiExec.exe /qb /I{123} /x", 1, 0, "-1"},
      // The switch counts only as it is usually written.
      {u"MsiExec.exe/I{123}", 1, 0, "1"},
      {u"MsiExec.exe /i{123}", 1, 0, "1"},
      {u"MsiExec.exe /I {123}", 1, 0, "1"},
      {u"MsiExec.exe /I123", 1, 0, "1"},
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

TEST_F(UninstallSourceTest, InstallerPathOfACommandThatResolvesToNothingIsItsPathPart) {
  files_.add_file("C:\\App\\mod.exe");
  text("App", "ModifyPath", u"C:\\App\\mod.exe /m");
  text("App", "UninstallString", u"C:\\App\\gone.exe /u");
  read();
  EXPECT_EQ(value(0, Field::installerPath), "C:\\App\\gone.exe /u");
  text("App", "UninstallString", u"\"C:\\App\\gone.exe\" /u");
  read();
  EXPECT_EQ(value(0, Field::installerPath), "C:\\App\\gone.exe");
}

TEST_F(UninstallSourceTest, InstallerPathOfACommandWithoutAPathPartIsThatOfTheModifyCommand) {
  files_.add_file("C:\\App\\mod.exe");
  for (const char16_t* uninstall : {u" ", u"\"\"", u"\"\" /u"}) {
    text("App", "UninstallString", uninstall);
    text("App", "ModifyPath", u"C:\\App\\mod.exe /m");
    read();
    SCOPED_TRACE(value(0, Field::uninstallCmd));
    EXPECT_EQ(value(0, Field::installerPath), "C:\\App\\mod.exe");
    EXPECT_EQ(value(0, Field::OK), "1");
    text("App", "ModifyPath", u"\"\"");
    read();
    EXPECT_EQ(value(0, Field::installerPath), "");
    EXPECT_EQ(value(0, Field::OK), "0");
  }
}

TEST_F(UninstallSourceTest, SubkeyWithNothingToRunHasNoCheckText) {
  text("App", "DisplayName", u"Name");
  read();
  EXPECT_EQ(value(0, Field::OK), "0");
  EXPECT_STREQ(UninstallEntry::fromRow(rows_[0]).okText.c_str(), "");
}

TEST_F(UninstallSourceTest, RowOfAnyOtherRootSaysThatItsSourceIsUnknown) {
  add("App");
  RegistryKey key;
  ASSERT_EQ(registry_.open(kCurrentUser, kUninstallBelowRoot, kKeyRead, key), kRegSuccess);
  UninstallSource source(registry_, files_, clock_);
  const auto source_of = [&](int32_t root) {
    source.readUninstallKey(root, key, unseen_, false, [this](const Row& row) { rows_ = {row}; });
    return value(0, Field::source);
  };
  EXPECT_EQ(source_of(kLocalMachine), "HKLM Uninstall");
  EXPECT_EQ(source_of(kCurrentUser), "HKCU Uninstall");
  EXPECT_EQ(source_of(kLocalMachine + 1), "???");
  EXPECT_EQ(value(0, Field::HKEY_ROOT), "-2147483645");
}

TEST_F(UninstallSourceTest, NumbersStandAsSignedTextAndAsValue) {
  number("App", "EstimatedSize", 0xFFFFFFF0);
  number("App", "WindowsInstaller", 0x80000000);
  read();
  EXPECT_EQ(value(0, Field::size), "-16");
  EXPECT_EQ(cell(rows_[0], Field::size).integer(), -16);
  EXPECT_EQ(value(0, Field::MSI), "-2147483648");
  EXPECT_EQ(value(0, Field::OK), "-1") << "nothing registered for a Windows Installer product";
}

TEST_F(UninstallSourceTest, UnreadableDateWithoutWriteTimeStandsAsItIs) {
  text("App", "InstallDate", u"some day");
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

TEST_F(UninstallSourceTest, DateTextOfAnotherDayThanTheWriteTimeWins) {
  text("App", "InstallDate", u"20090112");
  registry_.set_last_write(path("App"), kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 12));
}

TEST_F(UninstallSourceTest, DateTextOfTheSameDayAsTheWriteTimeTakesItsTimeOfDay) {
  text("App", "InstallDate", u"20090113");
  registry_.set_last_write(path("App"), kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8, 0));
}

TEST_F(UninstallSourceTest, UnreadableDateGivesWayToTheWriteTime) {
  text("App", "InstallDate", u"5 Januar 2009");
  registry_.set_last_write(path("App"), kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8, 0));
}

TEST_F(UninstallSourceTest, WriteTimeIsShownWithTheShiftOfThePresent) {
  add("App");
  registry_.set_last_write(path("App"), kMorningOf13January2009);
  RegistryKey key;
  ASSERT_EQ(registry_.open(kCurrentUser, kUninstallBelowRoot, kKeyRead, key), kRegSuccess);
  const ORLO::FixedClock summer({2026, 7, 1, 20, 12});
  UninstallSource source(registry_, files_, summer);
  source.readUninstallKey(kCurrentUser, key, unseen_, false,
                          [this](const Row& row) { rows_ = {row}; });
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 9, 0));
}

TEST_F(UninstallSourceTest, DateThatNoCalendarHasIsShownAsNothing) {
  text("App", "InstallDate", u"25/12/2009");
  registry_.set_last_write(path("App"), kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), "");
}

TEST_F(UninstallSourceTest, DwordDateWinsOverTheWriteTime) {
  number("App", "InstallDate", 1231743600);  // 12 January 2009, 07:00 UTC
  registry_.set_last_write(path("App"), kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 12, 8, 0));
}

TEST_F(UninstallSourceTest, OnlyADwordOfFourBytesIsADwordDate) {
  const struct {
    const char* what;
    uint32_t type;
    std::string data;
    std::string expected;
  } rows[] = {
      {"bytes", kRegBinary, "2009", "2009"},
      {"eight bytes", kRegDword, std::string("A\0\0\0\0\0\0\0", 8), "A"},
      {"two bytes", kRegDword, "AB", "AB"},
      {"long number", kRegQword, "20090113", shown(2009, 1, 13)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    raw("App", "InstallDate", row.type, row.data);
    read();
    EXPECT_EQ(value(0, Field::installDate), row.expected);
  }
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

TEST_F(UninstallSourceTest, EachFieldThatTheUsageRecordLacksStaysThatOfThePredecessor) {
  add("a");
  add("b");
  add("c");
  UsageBytes record;
  record.frequency = 17;
  record.last_used = kMorningOf13January2009;
  usage("a", record);
  UsageBytes only_frequency;
  only_frequency.frequency = 3;
  usage("b", only_frequency);
  UsageBytes only_use;
  only_use.last_used = kMorningOf13January2009 + ORLO::kFileTimePerDay;
  usage("c", only_use);
  ASSERT_EQ(read().size(), 3u);
  EXPECT_EQ(value(1, Field::frequency), "3");
  EXPECT_EQ(value(1, Field::lastUseDate), "13.01.2009 08:00:00");
  EXPECT_EQ(value(2, Field::frequency), "3");
  EXPECT_EQ(cell(rows_[2], Field::frequency).integer(), 3);
  EXPECT_EQ(value(2, Field::lastUseDate), "14.01.2009 08:00:00");
}

TEST_F(UninstallSourceTest, UsageDataEndWithThePass) {
  add("a");
  UsageBytes record;
  record.frequency = 17;
  record.last_used = kMorningOf13January2009;
  usage("a", record);
  read();
  registry_.remove(kUsageCacheKey);
  read();
  EXPECT_EQ(value(0, Field::frequency), "");
  EXPECT_EQ(value(0, Field::lastUseDate), "");
}

TEST_F(UninstallSourceTest, SizeAndIconAreNeverThoseOfThePredecessor) {
  add("a");
  add("b");
  UsageBytes record;
  record.installed = 10240;
  record.has_name = 1;
  record.name = u"C:\\App\\main.exe";
  usage("a", record);
  read();
  EXPECT_EQ(value(0, Field::size), "10");
  EXPECT_EQ(value(1, Field::size), "-1");
  EXPECT_EQ(value(1, Field::displayIcon), "");
}

TEST_F(UninstallSourceTest, LastUseBeyondTheCalendarIsShownAsNothing) {
  add("a");
  add("b");
  UsageBytes record;
  record.last_used = kMorningOf13January2009;
  usage("a", record);
  record.last_used = kNoDate;
  usage("b", record);
  read();
  EXPECT_EQ(value(0, Field::lastUseDate), "13.01.2009 08:00:00");
  EXPECT_EQ(value(1, Field::lastUseDate), "");
}

TEST_F(UninstallSourceTest, UsageRecordIsFoundByTheWholeNameOfTheSubkey) {
  add("{1234}.KB1");
  UsageBytes record;
  record.frequency = 5;
  usage("{1234}.KB1", record);
  read();
  EXPECT_EQ(value(0, Field::frequency), "5");
}

TEST_F(UninstallSourceTest, UsageRecordOfAnyTypeCounts) {
  add("a");
  UsageBytes record;
  record.frequency = 5;
  registry_.set_raw(std::string(kUsageCacheKey) + "\\a", "SlowInfoCache", kRegDword,
                    record.bytes());
  read();
  EXPECT_EQ(value(0, Field::frequency), "5");
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
  registry_.set_raw(std::string(kUsageCacheKey) + "\\App", "SlowInfoCache", kRegBinary,
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

TEST_F(UninstallSourceTest, IconIsLookedForWithoutItsIndexAndQuotes) {
  UsageBytes record;
  record.has_name = 1;
  record.name = u"C:\\App\\main.exe";
  usage("App", record);
  files_.set_variable("APPS", "D:\\Apps");
  const struct {
    const char16_t* icon;
    const char* probe;
  } rows[] = {
      {u"\"C:\\x.exe\",2", "can_open C:\\x.exe"},        {u"C:\\x.exe,2", "can_open C:\\x.exe"},
      {u"\"C:\\x.exe,2\"", "can_open C:\\x.exe"},        {u"C:\\a,b\\x.exe", "can_open C:\\a"},
      {u"%APPS%\\x.exe,-1", "can_open D:\\Apps\\x.exe"},
  };
  for (const auto& row : rows) {
    text("App", "DisplayIcon", row.icon);
    read();
    EXPECT_EQ(files_.calls().back(), row.probe);
  }
}

TEST_F(UninstallSourceTest, FolderServesAsAnIconThatIsThere) {
  UsageBytes record;
  record.has_name = 1;
  record.name = u"C:\\App\\main.exe";
  usage("App", record);
  text("App", "DisplayIcon", u"C:\\Folder");
  files_.add_folder("C:\\Folder");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), "C:\\Folder");
}

TEST_F(UninstallSourceTest, EmptyMainFileLeavesNoIcon) {
  UsageBytes record;
  record.has_name = 1;
  usage("App", record);
  text("App", "DisplayIcon", u"C:\\gone.ico");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), "");
}

TEST_F(UninstallSourceTest, IconStaysWhereTheRecordNamesNoMainFile) {
  UsageBytes record;
  record.name = u"C:\\App\\main.exe";
  usage("App", record);
  text("App", "DisplayIcon", u"C:\\gone.ico");
  read();
  EXPECT_EQ(value(0, Field::displayIcon), "C:\\gone.ico");
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

TEST_F(UninstallSourceTest, ErasesTheKeyOfAPackageUnderAnotherByItsPart) {
  add("{1}.KB5");
  unseen_.insert(RowKey{{"-2147483647", "KB5"}});
  unseen_.insert(RowKey{{"-2147483647", "{1}.KB5"}});
  unseen_.insert(RowKey{{"-2147483646", "KB5"}});
  read();
  EXPECT_EQ(unseen_.size(), 2u);
  EXPECT_FALSE((unseen_.contains(RowKey{{"-2147483647", "KB5"}})));
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

TEST_F(UninstallSourceTest, MakesNoCallTooMany) {
  text("App", "DisplayName", u"Name");
  number("App", "NoModify", 1);
  registry_.clear_calls();
  read();
  const std::string cache =
      "open SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\App";
  EXPECT_EQ(registry_.calls(), (std::vector<std::string>{
                                   std::string("open ") + kUninstallBelowRoot, "info Uninstall",
                                   "subkey_at App", "open App", "info App", "value_at DisplayName",
                                   "value_at NoModify", cache, "subkey_at "}));
  EXPECT_TRUE(files_.calls().empty());
}

TEST_F(UninstallSourceTest, LeavesNoKeyOpen) {
  add("a");
  usage("a", UsageBytes());
  read();
  EXPECT_EQ(registry_.open_keys(), 0u);
}

}  // namespace
