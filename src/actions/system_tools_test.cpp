#include "actions/system_tools.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "actions/actions_test_support.h"
#include "orlo/exception.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"

namespace {

constexpr char kNoFrame[] = "-NO-CONTEXT-";
constexpr char kType[] = "HKEY_CLASSES_ROOT\\.pcp";
constexpr char kTypeCommand[] = "HKEY_CLASSES_ROOT\\.pcp\\shell\\edit\\command";
constexpr char kClassCommand[] = "HKEY_CLASSES_ROOT\\Birch.Patch\\shell\\edit\\command";
constexpr char kCleanupKey[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Shared Tools\\MSInfo\\Tools\\MsiCU";
constexpr char16_t kOrca[] = u"\"C:\\Orca Tool\\orca.exe\" \"%1\"";

/// Notes under which context frame and how many wait cursors each start is made.
class WatchingShell final : public MemoryShell {
 public:
  explicit WatchingShell(const RecordingFrame& frame) : frame_(frame) {}
  bool open(const ShellStart& start) override {
    context = ORLO::ExceptionContext::current().text();
    cursors = frame_.cursors;
    return MemoryShell::open(start);
  }

  std::string context;
  int cursors = -1;

 private:
  const RecordingFrame& frame_;
};

class SystemToolsTest : public testing::Test {
 protected:
  SystemToolsTest() {
    files_.add_search_folder("C:\\Windows");
    for (const char* name : {"msinfo32.exe", "msconfig.exe", "rundll32.exe"})
      files_.add_file(std::string("C:\\Windows\\") + name);
    files_.add_file("C:\\Orca Tool\\orca.exe");
  }

  SystemTools tools() {
    return SystemTools({files_, shell_, registry_, frame_}, {"Zolvane", "no points", "open it?"},
                       "http://cleanup.example/");
  }
  void register_orca(std::u16string_view command) { registry_.set_text(kTypeCommand, "", command); }
  /// What a launch without a file starts: "FILE|ARGUMENTS"; "-" if nothing.
  std::string orca_start() {
    WatchingShell shell(frame_);
    SystemTools({files_, shell, registry_, frame_}, {}, "").orca();
    if (shell.starts().empty()) return "-";
    return shell.starts()[0].file + '|' + shell.starts()[0].arguments;
  }
  void expect_start(const std::string& file, const std::string& arguments, const char* context,
                    int cursors) {
    ASSERT_EQ(shell_.starts().size(), 1u);
    const MemoryShell::Start& start = shell_.starts()[0];
    EXPECT_FALSE(start.waits);
    EXPECT_EQ(start.owner, &frame_);
    EXPECT_EQ(start.file, file);
    EXPECT_EQ(start.arguments, arguments);
    EXPECT_EQ(start.verb, "open");
    EXPECT_EQ(start.show, 1);
    EXPECT_EQ(shell_.context, context);
    EXPECT_EQ(shell_.cursors, cursors);
    EXPECT_EQ(frame_.cursors, 0);
    EXPECT_EQ(frame_.refreshes, 0);
  }

  MemoryFiles files_;
  MemoryRegistry registry_{MemoryRegistry::View::native};
  RecordingFrame frame_;
  WatchingShell shell_{frame_};
};

TEST_F(SystemToolsTest, LaunchesMsinfo) {
  tools().msinfo();
  expect_start("msinfo32.exe", "", "launching msinfo32.exe", 1);
}

TEST_F(SystemToolsTest, LaunchesMsconfig) {
  tools().msconfig();
  expect_start("msconfig.exe", "", "launching msconfig.exe", 1);
}

TEST_F(SystemToolsTest, LaunchesTheSoftwareControlPanel) {
  tools().software_control_panel();
  expect_start("rundll32.exe", "shell32.dll,Control_RunDLL appwiz.cpl", "launching software cpl",
               1);
}

TEST_F(SystemToolsTest, AProgramThatIsNotFoundIsLeftToTheShellAndNotReported) {
  MemoryFiles empty;
  shell_.refuse_all();
  SystemTools({empty, shell_, registry_, frame_}, {}, "").msinfo();
  expect_start("msinfo32.exe", "", "launching msinfo32.exe", 1);
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(SystemToolsTest, LaunchesSystemRestoreFromTheSystemsFolder) {
  files_.set_system_folder("D:\\Win 7\\system32");
  files_.add_file("D:\\Win 7\\system32\\restore\\Rstrui.exe");
  tools().system_restore();
  expect_start("D:\\Win 7\\system32\\restore\\Rstrui.exe", "", kNoFrame, 0);
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(SystemToolsTest, TakesWhateverCanBeOpenedForSystemRestore) {
  files_.add_folder("C:\\Windows\\system32\\restore\\Rstrui.exe");
  tools().system_restore();
  EXPECT_EQ(shell_.starts().size(), 1u);
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(SystemToolsTest, SaysThatTheSystemHasNoSystemRestore) {
  frame_.during_box = [this] { EXPECT_EQ(frame_.cursors, 0); };
  tools().system_restore();
  EXPECT_EQ(frame_.boxes, std::vector<std::string>{"warn Zolvane: no points"});
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(SystemToolsTest, WithoutASystemFolderThereIsNoSystemRestoreEither) {
  files_.add_file("C:\\Windows\\system32\\restore\\Rstrui.exe");
  files_.fail("system_folder");
  tools().system_restore();
  EXPECT_EQ(frame_.boxes.size(), 1u);
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(SystemToolsTest, LaunchesTheRegisteredCleanupTool) {
  registry_.set_text(kCleanupKey, "command", u"\"C:\\Orca Tool\\orca.exe\" /c");
  tools().msi_cleanup();
  expect_start("C:\\Orca Tool\\orca.exe", "/c", "launching msicuu.exe", 1);
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(SystemToolsTest, ExpandsVariablesInTheProgramOfARegisteredCommandOnly) {
  files_.set_variable("TOOLS", "C:\\Orca Tool");
  registry_.set_text(kCleanupKey, "command", u"\"%TOOLS%\\orca.exe\" %TOOLS%");
  tools().msi_cleanup();
  expect_start("C:\\Orca Tool\\orca.exe", "%TOOLS%", "launching msicuu.exe", 1);
}

TEST_F(SystemToolsTest, TakesALongCleanupCommandWhole) {
  registry_.set_text(kCleanupKey, "command", u"msinfo32.exe " + std::u16string(3000, u'x'));
  tools().msi_cleanup();
  expect_start("msinfo32.exe", std::string(3000, 'x'), "launching msicuu.exe", 1);
}

TEST_F(SystemToolsTest, OffersTheDownloadOfACleanupToolThatIsMissing) {
  frame_.during_box = [this] { EXPECT_EQ(frame_.cursors, 0); };
  tools().msi_cleanup();
  EXPECT_EQ(frame_.boxes, std::vector<std::string>{"ask launching msicuu.exe: open it?"});
  expect_start("http://cleanup.example/", "", "launching msicuu.exe", 0);
}

TEST_F(SystemToolsTest, AnEmptyCleanupCommandCountsAsMissing) {
  registry_.set_text(kCleanupKey, "command", u"");
  frame_.answer = false;
  tools().msi_cleanup();
  EXPECT_EQ(frame_.boxes.size(), 1u);
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(SystemToolsTest, OpensNoDownloadWhenTheWindowClosesUnderTheQuestion) {
  frame_.during_box = [this] { frame_.is_closing = true; };
  tools().msi_cleanup();
  EXPECT_EQ(frame_.boxes.size(), 1u);
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(SystemToolsTest, LaunchesOrcaWithoutAFile) {
  register_orca(kOrca);
  tools().orca();
  expect_start("C:\\Orca Tool\\orca.exe", "", "launching ORCA", 1);
}

TEST_F(SystemToolsTest, RemovesEachPlaceOfTheFileFromOrcasCommand) {
  const struct {
    const char16_t* registered;
    const char* started;
  } rows[] = {
      {u"\"C:\\Orca Tool\\orca.exe\" \"%1\"", "C:\\Orca Tool\\orca.exe|"},
      {u"\"C:\\Orca Tool\\orca.exe\" %1", "C:\\Orca Tool\\orca.exe|"},
      {u"\"C:\\Orca Tool\\orca.exe\" \"%1\" /a %1 \"%1\"", "C:\\Orca Tool\\orca.exe|/a"},
      {u"\"C:\\Orca Tool\\orca.exe\" /a", "C:\\Orca Tool\\orca.exe|/a"},
      {u"\"C:\\Orca Tool\\orca.exe\" /f:%1 x\"%1\"", "C:\\Orca Tool\\orca.exe|/f:%1 x\"%1\""},
      {u"\"C:\\Orca Tool\\orca.exe\" \"%12", "C:\\Orca Tool\\orca.exe|\"%12"},
      {u"msinfo32 x %12", "msinfo32|x2"},
      {u"C:\\Orca Tool\\orca.exe %1", "C:\\Orca Tool\\orca.exe|"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.started);
    register_orca(row.registered);
    EXPECT_EQ(orca_start(), row.started);
  }
}

TEST_F(SystemToolsTest, NothingHappensWithoutOrca) {
  SystemTools none = tools();
  EXPECT_FALSE(none.has_orca());
  none.orca();
  none.open_with_orca(msi_entry());
  EXPECT_EQ(shell_.cursors, -1) << "no shell was asked";
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(SystemToolsTest, OpensAPackageWithOrca) {
  register_orca(kOrca);
  UninstallEntry entry = msi_entry();
  entry.packagePath = "C:\\Windows\\Installer\\a b.msi";
  tools().open_with_orca(entry);
  expect_start("C:\\Orca Tool\\orca.exe", "\"C:\\Windows\\Installer\\a b.msi\"", kNoFrame, 0);
}

TEST_F(SystemToolsTest, PutsThePackageAtEachPlaceOfOrcasCommandAsItIs) {
  register_orca(u"\"C:\\Orca Tool\\orca.exe\" %1 /f:%1");
  UninstallEntry entry = msi_entry();
  entry.packagePath = "C:\\%1 b.msi";
  tools().open_with_orca(entry);
  expect_start("C:\\Orca Tool\\orca.exe", "C:\\%1 b.msi /f:C:\\%1 b.msi", kNoFrame, 0);
}

TEST_F(SystemToolsTest, OpensOnlyPackagesOfTheInstallerWithOrca) {
  register_orca(kOrca);
  tools().open_with_orca(plain_entry());
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(SystemToolsTest, FindsOrcaByTheTypeItself) {
  registry_.set_text(kType, "", u"Birch.Patch");
  registry_.set_text(kClassCommand, "", u"msconfig.exe");
  register_orca(u"msinfo32.exe");
  EXPECT_EQ(orca_start(), "msinfo32.exe|");
}

TEST_F(SystemToolsTest, FindsOrcaByTheClassOfATypeWithoutAShellKey) {
  registry_.set_text(kType, "", u"Birch.Patch");
  registry_.set_text(kClassCommand, "", u"msconfig.exe \"%1\"");
  EXPECT_EQ(orca_start(), "msconfig.exe|");
}

TEST_F(SystemToolsTest, ACommandKeyWithoutADefaultValueIsNone) {
  registry_.set_text(kTypeCommand, "other", u"msinfo32.exe");
  EXPECT_EQ(orca_start(), "-");
  registry_.set_text(kType, "", u"Birch.Patch");
  registry_.set_text(kClassCommand, "other", u"msinfo32.exe");
  EXPECT_EQ(orca_start(), "-");
  registry_.set_text(kClassCommand, "", u"msconfig.exe");
  EXPECT_EQ(orca_start(), "msconfig.exe|");
}

TEST_F(SystemToolsTest, AnEmptyCommandOfTheTypeIsTheResult) {
  registry_.set_text(kType, "", u"Birch.Patch");
  registry_.set_text(kClassCommand, "", u"msconfig.exe");
  register_orca(u"");
  EXPECT_FALSE(tools().has_orca());
}

TEST_F(SystemToolsTest, AnEmptyClassNameLeadsNowhere) {
  registry_.set_text(kType, "", u"");
  registry_.set_text("HKEY_CLASSES_ROOT\\shell\\edit\\command", "", u"msconfig.exe");
  registry_.clear_calls();
  EXPECT_FALSE(tools().has_orca());
  EXPECT_EQ(registry_.calls().back(), "value ") << "nothing is looked for below no class";
}

TEST_F(SystemToolsTest, OrcasCommandHasAtMost259Characters) {
  const std::u16string program = u"msinfo32.exe ";
  for (const size_t length : {size_t{258}, size_t{259}, size_t{260}, size_t{261}}) {
    SCOPED_TRACE(length);
    register_orca(program + std::u16string(length - program.size(), u'x'));
    EXPECT_EQ(tools().has_orca(), length < 260);
  }
}

TEST_F(SystemToolsTest, ATextWithoutATerminatorHasThatLimitToo) {
  for (const size_t length : {size_t{259}, size_t{260}}) {
    SCOPED_TRACE(length);
    std::string data;
    for (size_t i = 0; i < length; ++i)
      data.append("x\0", 2);
    registry_.set_raw(kTypeCommand, "", kRegSz, data);
    EXPECT_EQ(tools().has_orca(), length < 260);
  }
}

TEST_F(SystemToolsTest, ACommandThatIsTooLongGivesWayToThatOfTheClass) {
  register_orca(std::u16string(300, u'x'));
  registry_.set_text(kType, "", u"Birch.Patch");
  registry_.set_text(kClassCommand, "", u"msconfig.exe");
  EXPECT_EQ(orca_start(), "msconfig.exe|");
}

TEST_F(SystemToolsTest, AClassNameThatIsTooLongLeadsNowhere) {
  registry_.set_text(kType, "", std::u16string(260, u'c'));
  EXPECT_FALSE(tools().has_orca());
}

TEST_F(SystemToolsTest, OnlyTextsAreCommands) {
  registry_.set_raw(kTypeCommand, "", kRegBinary, "msinfo32.exe");
  EXPECT_FALSE(tools().has_orca());
  registry_.set_raw(kTypeCommand, "", kRegExpandSz, std::string("x\0\0\0", 4));
  EXPECT_TRUE(tools().has_orca());
}

TEST_F(SystemToolsTest, LooksForOrcaOnce) {
  register_orca(kOrca);
  SystemTools found = tools();
  registry_.clear_calls();
  found.orca();
  EXPECT_TRUE(found.has_orca());
  EXPECT_TRUE(registry_.calls().empty());
}

TEST_F(SystemToolsTest, ClosesTheKeysThatItReads) {
  register_orca(kOrca);
  registry_.set_text(kCleanupKey, "command", u"msinfo32.exe");
  tools().msi_cleanup();
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(SystemToolsTest, OpensWhateverATextNames) {
  const struct {
    const char* text;
    const char* file;
    const char* arguments;
  } rows[] = {
      {"http://www.birch.example/a b", "http://www.birch.example/a b", ""},
      {"mailto:help@birch.example", "mailto:help@birch.example", ""},
      {"C:\\Orca Tool", "C:\\Orca Tool", ""},
      {"\"C:\\Orca Tool\\\"", "C:\\Orca Tool\\", ""},
      {"msinfo32 /x", "msinfo32", "/x"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    WatchingShell shell(frame_);
    SystemTools({files_, shell, registry_, frame_}, {}, "").open(row.text);
    ASSERT_EQ(shell.starts().size(), 1u);
    EXPECT_EQ(shell.starts()[0].file, row.file);
    EXPECT_EQ(shell.starts()[0].arguments, row.arguments);
    EXPECT_EQ(shell.cursors, 0);
  }
}

TEST_F(SystemToolsTest, OpensNothingForAnEmptyText) {
  tools().open("");
  tools().open("\"\"");
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(SystemToolsTest, TheWaitCursorGoesWhenTheShellThrows) {
  class ThrowingShell final : public MemoryShell {
   public:
    bool open(const ShellStart&) override { throw ORLO::UserException("gone"); }
  };
  ThrowingShell shell;
  SystemTools tools({files_, shell, registry_, frame_}, {}, "");
  EXPECT_THROW(tools.msinfo(), ORLO::UserException);
  EXPECT_EQ(frame_.cursors, 0);
}

}  // namespace
