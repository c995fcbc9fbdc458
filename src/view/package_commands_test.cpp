#include "view/package_commands.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/resource_ids.h"

namespace {

TEST(PackageCommands, NothingCanBeDoneWithoutAPackage) {
  constexpr unsigned kCommands[] = {IDC_UNINSTALL,  IDC_MODIFY,        IDC_REPAIR,
                                    ID_REMOVE,      ID_PATCHES,        ID_FEATURES,
                                    ID_MSI_CONTENT, ID_OPEN_WITH_ORCA, ID_OPEN_FOLDER};
  for (const unsigned command : kCommands) {
    SCOPED_TRACE(command);
    EXPECT_FALSE(can_run(command, {nullptr, "http://x", true, false}));
  }
}

TEST(PackageCommands, ActionsFollowWhatThePackageAllows) {
  UninstallEntry entry;
  constexpr unsigned kCommands[] = {IDC_UNINSTALL, IDC_MODIFY, IDC_REPAIR, ID_REMOVE};
  for (const unsigned command : kCommands)
    EXPECT_FALSE(can_run(command, {&entry}));
  entry.MSI = true;
  entry.HKEY_ROOT = 1;
  for (const unsigned command : kCommands)
    EXPECT_TRUE(can_run(command, {&entry}));
  entry.noRemove = 1;
  EXPECT_FALSE(can_run(IDC_UNINSTALL, {&entry}));
  EXPECT_TRUE(can_run(IDC_MODIFY, {&entry}));
  EXPECT_TRUE(can_run(IDC_REPAIR, {&entry}));
  entry.noRemove = 0;
  entry.noModify = 1;
  EXPECT_TRUE(can_run(IDC_UNINSTALL, {&entry}));
  EXPECT_FALSE(can_run(IDC_MODIFY, {&entry}));
  EXPECT_FALSE(can_run(IDC_REPAIR, {&entry}));
}

TEST(PackageCommands, TheContextMenuFollowsWhatThePackageHas) {
  UninstallEntry entry;
  const CommandContext at{&entry, "", true, false};
  EXPECT_FALSE(can_run(ID_PATCHES, at));
  EXPECT_FALSE(can_run(ID_FEATURES, at));
  EXPECT_FALSE(can_run(ID_MSI_CONTENT, at));
  EXPECT_FALSE(can_run(ID_OPEN_WITH_ORCA, at));
  EXPECT_FALSE(can_run(ID_OPEN_FOLDER, at));
  entry.patches = 1;
  EXPECT_TRUE(can_run(ID_PATCHES, at));
  entry.features = 1;
  EXPECT_TRUE(can_run(ID_FEATURES, at));
  entry.installLocation = "C:\\x";
  EXPECT_TRUE(can_run(ID_OPEN_FOLDER, at));
  entry.MSI = true;
  EXPECT_TRUE(can_run(ID_OPEN_WITH_ORCA, at));
  EXPECT_FALSE(can_run(ID_MSI_CONTENT, at));
  entry.packagePath = "C:\\x.msi";
  EXPECT_TRUE(can_run(ID_MSI_CONTENT, at));
  entry.MSI = false;
  EXPECT_FALSE(can_run(ID_MSI_CONTENT, at));
}

TEST(PackageCommands, ToolsFollowTheSystem) {
  EXPECT_TRUE(can_run(ID_MSCONFIG, {nullptr, "", false, false}));
  EXPECT_TRUE(can_run(ID_SYSTEM_RESTORE, {nullptr, "", false, false}));
  EXPECT_FALSE(can_run(ID_MSCONFIG, {nullptr, "", false, true}));
  EXPECT_FALSE(can_run(ID_SYSTEM_RESTORE, {nullptr, "", false, true}));
  EXPECT_FALSE(can_run(ID_ORCA, {nullptr, "", false, false}));
  EXPECT_TRUE(can_run(ID_ORCA, {nullptr, "", true, false}));
  EXPECT_FALSE(can_run(ID_LAUNCH_URL, {nullptr, "", false, false}));
  EXPECT_TRUE(can_run(ID_LAUNCH_URL, {nullptr, "http://x", false, false}));
}

TEST(PackageCommands, OthersCanAlwaysBeGiven) {
  EXPECT_TRUE(can_run(ID_COPY, {}));
  EXPECT_TRUE(can_run(ID_MSINFO, {}));
}

TEST(PackageCommands, ADoubleClickUninstallsOrElseModifies) {
  UninstallEntry entry;
  EXPECT_EQ(default_command(entry), 0u);
  entry.modifyCmd = "mod.exe";
  EXPECT_EQ(default_command(entry), static_cast<unsigned>(IDC_MODIFY));
  entry.uninstallCmd = "un.exe";
  EXPECT_EQ(default_command(entry), static_cast<unsigned>(IDC_UNINSTALL));
  entry.noRemove = 1;
  EXPECT_EQ(default_command(entry), static_cast<unsigned>(IDC_MODIFY));
  entry.noModify = 1;
  EXPECT_EQ(default_command(entry), 0u);
}

TEST(PackageCommands, ALineWithAnArrowForAName) {
  UninstallEntry entry;
  entry.displayName = " -->";
  EXPECT_FALSE(has_actions(entry));
  entry.displayName = "-->";
  EXPECT_TRUE(has_actions(entry));
}

TEST(CellUrl, IsAWebOrMailAddress) {
  const struct {
    const char* cell;
    const char* url;
  } rows[] = {
      {"http://www.birch.example/", "http://www.birch.example/"},
      {"HTTP://www.birch.example/", "HTTP://www.birch.example/"},
      {"ftp://files.example", "ftp://files.example"},
      {"MailTo:us", "MailTo:us"},
      {"help@birch.example", "mailto:help@birch.example"},
      {"a.b @ c", "mailto:a.b @ c"},
      {"www.birch.example", ""},
      {"help@birch", ""},
      {"https://www.birch.example/", ""},
      {" http://www.birch.example/", ""},
      {"http:/", ""},
      {"", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.cell);
    EXPECT_STREQ(cell_url(row.cell).c_str(), row.url);
  }
}

TEST(CellUrl, CutsALongText) {
  const std::string url = "http://" + std::string(300, 'x');
  EXPECT_EQ(cell_url(url.c_str()).c_str(), url.substr(0, 259));
  // What would make it a mail address stands too far behind.
  EXPECT_TRUE(cell_url((std::string(260, 'x') + "@a.b").c_str()).empty());
}

}  // namespace
