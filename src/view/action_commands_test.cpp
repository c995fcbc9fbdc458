#include "view/action_commands.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/memory_files.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"
#include "platform/resource_ids.h"

namespace {

/// Says yes to everything and writes down what it is asked.
class AgreeingFrame : public ActionFrame {
 public:
  void* owner() override { return nullptr; }
  bool confirm(const String& text, const String&) override {
    log.push_back(std::string("confirm ") + text.c_str());
    return true;
  }
  bool ask(const String& text, const String&) override {
    log.push_back(std::string("ask ") + text.c_str());
    return true;
  }
  void warn(const String& text, const String&) override {
    log.push_back(std::string("warn ") + text.c_str());
  }
  void begin_wait_cursor() override {}
  void end_wait_cursor() noexcept override {}
  unsigned refreshCount() const override { return 0; }
  bool closing() const override { return false; }
  void requestRefresh() override { log.emplace_back("refresh"); }

  std::vector<std::string> log;
};

class ActionCommandsTest : public testing::Test {
 protected:
  ActionCommandsTest() {
    shell.end_at_once();
    files.add_file("C:\\un.exe");
    files.add_file("C:\\mod.exe");
    entry.name = entry.keyName = "Alder";
    entry.displayName = "Alder Tools";
    entry.uninstallCmd = "C:\\un.exe /x";
    entry.modifyCmd = "C:\\mod.exe";
    entry.installLocation = "C:\\Alder";
  }

  std::unique_ptr<ActionCommands> make() {
    return std::make_unique<ActionCommands>(
        ActionParts{files, shell, registry, frame},
        [](unsigned id) { return String::formatted("%u %%s %%s", id); });
  }
  std::vector<std::string> started() const {
    std::vector<std::string> all;
    for (const MemoryShell::Start& start : shell.starts())
      all.push_back(start.file + " " + start.arguments);
    return all;
  }

  MemoryFiles files;
  MemoryShell shell;
  MemoryRegistry registry;
  AgreeingFrame frame;
  UninstallEntry entry;
};

using Texts = std::vector<std::string>;

TEST_F(ActionCommandsTest, KnowsWhichCommandsAreItsOwn) {
  const auto commands = make();
  constexpr unsigned kOthers[] = {ID_COPY, ID_EXPORT, ID_FEATURES, IDC_REFRESH, 0};
  for (const unsigned command : kOthers) {
    EXPECT_FALSE(commands->run(command, {&entry})) << command;
  }
  EXPECT_TRUE(started().empty());
}

TEST_F(ActionCommandsTest, EachPackageCommandIsItsAction) {
  const auto commands = make();
  EXPECT_TRUE(commands->run(IDC_UNINSTALL, {&entry}));
  EXPECT_TRUE(commands->run(IDC_MODIFY, {&entry}));
  EXPECT_EQ(started(), (Texts{"C:\\un.exe /x", "C:\\mod.exe "}));
  EXPECT_EQ(frame.log, (Texts{"confirm 124 Alder Tools Alder", "refresh", "refresh"}));
  frame.log.clear();
  entry.MSI = true;
  EXPECT_TRUE(commands->run(IDC_REPAIR, {&entry}));
  EXPECT_TRUE(commands->run(ID_REMOVE, {&entry}));
  EXPECT_EQ(frame.log,
            (Texts{"confirm 135 Alder Tools Alder", "refresh", "confirm 125 Alder Tools Alder"}));
}

TEST_F(ActionCommandsTest, WithoutAPackageTheyDoNothing) {
  const auto commands = make();
  constexpr unsigned kNeedy[] = {IDC_UNINSTALL,  IDC_MODIFY,        IDC_REPAIR,    ID_REMOVE,
                                 ID_OPEN_FOLDER, ID_OPEN_WITH_ORCA, ID_LAUNCH_URL, ID_ORCA};
  for (const unsigned command : kNeedy) {
    EXPECT_TRUE(commands->run(command, {})) << command;
  }
  EXPECT_TRUE(started().empty());
  EXPECT_TRUE(frame.log.empty());
}

TEST_F(ActionCommandsTest, AddressAndFolderAreOpened) {
  const auto commands = make();
  CommandContext at{&entry};
  at.url = "mailto:desk@alder.example";
  EXPECT_TRUE(commands->run(ID_LAUNCH_URL, at));
  EXPECT_TRUE(commands->run(ID_OPEN_FOLDER, at));
  EXPECT_EQ(started(), (Texts{"mailto:desk@alder.example ", "C:\\Alder "}));
}

TEST_F(ActionCommandsTest, ToolsThatAreGreyAreNotStarted) {
  const auto commands = make();
  CommandContext at;
  at.under_wow64 = true;
  EXPECT_TRUE(commands->run(ID_MSCONFIG, at));
  EXPECT_TRUE(commands->run(ID_SYSTEM_RESTORE, at));
  EXPECT_TRUE(started().empty());
  EXPECT_TRUE(frame.log.empty());
}

TEST_F(ActionCommandsTest, ToolsAreStarted) {
  const auto commands = make();
  EXPECT_TRUE(commands->run(ID_MSINFO, {}));
  EXPECT_TRUE(commands->run(ID_MSCONFIG, {}));
  EXPECT_TRUE(commands->run(ID_SOFTWARE_CONTROL_PANEL, {}));
  EXPECT_EQ(started().size(), 3u);
  EXPECT_TRUE(commands->run(ID_SYSTEM_RESTORE, {}));
  EXPECT_EQ(frame.log, (Texts{"warn 103 %s %s"}));
  EXPECT_TRUE(commands->run(ID_MSI_CLEANUP, {}));
  EXPECT_EQ(frame.log.back(), "ask 123 %s %s");
  EXPECT_EQ(started().back(), "https://example.org/zolvane/msi-cleanup ");
}

TEST_F(ActionCommandsTest, TheEditorOfMsiFilesIsThereIfTheSystemHasOne) {
  EXPECT_FALSE(make()->has_orca());
  registry.set_text("HKEY_CLASSES_ROOT\\.pcp\\shell\\edit\\command", "",
                    u"\"C:\\orca.exe\" \"%1\"");
  const auto commands = make();
  EXPECT_TRUE(commands->has_orca());
  CommandContext at{&entry};
  at.has_orca = true;
  EXPECT_TRUE(commands->run(ID_ORCA, at));
  entry.MSI = true;
  entry.packagePath = "C:\\a b.msi";
  EXPECT_TRUE(commands->run(ID_OPEN_WITH_ORCA, at));
  EXPECT_EQ(started(), (Texts{"C:\\orca.exe ", "C:\\orca.exe \"C:\\a b.msi\""}));
}

}  // namespace
