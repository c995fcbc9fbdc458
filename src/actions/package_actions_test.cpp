#include "actions/package_actions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "actions/actions_test_support.h"
#include "orlo/exception.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"

namespace {

using Items = ORLO::Waitable* const*;

constexpr uint32_t kLong = 5000;
constexpr char kUninstall[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

/// What the wait of the actions does; set by the test.
std::function<int(Items, size_t)> scripted;

int scripted_wait(Items items, size_t count, uint32_t timeout) {
  EXPECT_EQ(timeout, ORLO::kInfinite);
  return scripted(items, count);
}

int real_wait(Items items, size_t count) {
  return ORLO::wait_with_messages(items, count, kLong);
}

class PackageActionsTest : public testing::Test {
 protected:
  PackageActionsTest() {
    files_.add_file("C:\\Birch\\un.exe");
    files_.add_file("C:\\Windows\\msiexec.exe");
    files_.add_search_folder("C:\\Windows");
    shell_.end_at_once();
    scripted = [this](Items items, size_t count) {
      ++waits_;
      EXPECT_EQ(count, 2u);
      return real_wait(items, count);
    };
  }
  ~PackageActionsTest() override { scripted = nullptr; }

  /// "FILE|ARGUMENTS" of each start, in a row.
  std::string starts() const {
    std::string all;
    for (const MemoryShell::Start& start : shell_.starts())
      all.append(all.empty() ? "" : " ").append(start.file).append("|").append(start.arguments);
    return all;
  }
  std::string key_of(const char* name) const {
    return std::string("HKEY_LOCAL_MACHINE\\") + kUninstall + '\\' + name;
  }
  bool has_key(const char* name) {
    RegistryKey key;
    return registry_.open(kLocalMachine, (std::string(kUninstall) + '\\' + name).c_str(), kKeyRead,
                          key) == kRegSuccess;
  }

  MemoryFiles files_;
  MemoryShell shell_;
  MemoryRegistry registry_{MemoryRegistry::View::native};
  RecordingFrame frame_;
  int waits_ = 0;
  PackageActions actions_{{files_, shell_, registry_, frame_},
                          {"un %s [%s]", "fix %s [%s]", "rm %s [%s]", "Exc"},
                          &scripted_wait};
};

TEST(CanDo, NothingWithoutAPackage) {
  EXPECT_FALSE(canUninstall(nullptr));
  EXPECT_FALSE(canModify(nullptr));
  EXPECT_FALSE(canRepair(nullptr));
  EXPECT_FALSE(canRemoveEntry(nullptr));
}

TEST(CanDo, UninstallAndModifyNeedACommandOrTheInstaller) {
  UninstallEntry entry;
  EXPECT_FALSE(canUninstall(&entry));
  EXPECT_FALSE(canModify(&entry));
  entry = plain_entry();
  EXPECT_TRUE(canUninstall(&entry));
  EXPECT_TRUE(canModify(&entry));
  EXPECT_FALSE(canRepair(&entry));
  entry = UninstallEntry();
  entry.MSI = true;
  EXPECT_TRUE(canUninstall(&entry));
  EXPECT_TRUE(canModify(&entry));
  EXPECT_TRUE(canRepair(&entry));
}

TEST(CanDo, OneCommandDoesNotStandForTheOther) {
  UninstallEntry entry;
  entry.uninstallCmd = "un.exe";
  EXPECT_TRUE(canUninstall(&entry));
  EXPECT_FALSE(canModify(&entry));
  entry = UninstallEntry();
  entry.modifyCmd = "mod.exe";
  EXPECT_FALSE(canUninstall(&entry));
  EXPECT_TRUE(canModify(&entry));
}

TEST(CanDo, WhatIsForbiddenCannotBeDone) {
  UninstallEntry entry = plain_entry();
  entry.MSI = true;
  entry.noRemove = 1;
  EXPECT_FALSE(canUninstall(&entry));
  EXPECT_TRUE(canModify(&entry));
  EXPECT_TRUE(canRepair(&entry));
  entry.noRemove = 0;
  entry.noModify = 1;
  EXPECT_TRUE(canUninstall(&entry));
  EXPECT_FALSE(canModify(&entry));
  EXPECT_FALSE(canRepair(&entry));
}

TEST(CanDo, OnlyAnEntryWithARootCanBeRemoved) {
  UninstallEntry entry;
  EXPECT_FALSE(canRemoveEntry(&entry));
  entry.HKEY_ROOT = kLocalMachine;
  EXPECT_TRUE(canRemoveEntry(&entry));
}

TEST_F(PackageActionsTest, UninstallAsksStartsWaitsAndRefreshes) {
  frame_.during_box = [this] { EXPECT_TRUE(shell_.starts().empty()); };
  actions_.uninstall(plain_entry());
  EXPECT_EQ(frame_.boxes, std::vector<std::string>{"confirm Uninstallation: un Birch [birch]"});
  ASSERT_EQ(starts(), "C:\\Birch\\un.exe|/u");
  EXPECT_TRUE(shell_.starts()[0].waits);
  EXPECT_EQ(shell_.starts()[0].owner, &frame_);
  EXPECT_EQ(shell_.starts()[0].verb, "open");
  EXPECT_EQ(shell_.starts()[0].show, 1);
  EXPECT_EQ(waits_, 1);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, ModifyAsksNothing) {
  actions_.modify(plain_entry());
  EXPECT_TRUE(frame_.boxes.empty());
  EXPECT_EQ(starts(), "C:\\Birch\\un.exe|/m");
  EXPECT_EQ(waits_, 1);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, RepairIsLeftToTheInstaller) {
  UninstallEntry entry = msi_entry();
  entry.modifyCmd = "C:\\Birch\\un.exe /m";
  actions_.repair(entry);
  EXPECT_EQ(frame_.boxes, std::vector<std::string>{"confirm Repair: fix Birch [{1111-2222}]"});
  EXPECT_EQ(starts(), "msiexec.exe|/f {1111-2222}");
  EXPECT_EQ(waits_, 1);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, RepairDoesNothingWhereItIsNotAllowed) {
  UninstallEntry entry = msi_entry();
  entry.noModify = 1;
  actions_.repair(entry);
  actions_.repair(plain_entry());
  EXPECT_TRUE(frame_.boxes.empty());
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, UninstallStartsTheInstallerForAProductThatRegisteredItsInstallation) {
  const struct {
    const char* registered;
    const char* started;
  } rows[] = {
      {"", "msiexec.exe|/x {1111-2222}"},
      {"MsiExec.exe /I{1111-2222}", "msiexec.exe|/x {1111-2222}"},
      {"MsiExec.exe /qb /I{1111-2222} /z", "msiexec.exe|/x {1111-2222}"},
      {"MsiExec.exe /X{1111-2222}", "MsiExec.exe|/X{1111-2222}"},
      {"MsiExec.exe /i{1111-2222}", "MsiExec.exe|/i{1111-2222}"},
      {"MsiExec.exe /I {1111-2222}", "MsiExec.exe|/I {1111-2222}"},
      {"C:\\Birch\\un.exe /u", "C:\\Birch\\un.exe|/u"},
      {"C:\\Birch\\un.exe x/I{1}", "C:\\Birch\\un.exe|x/I{1}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.registered);
    MemoryShell shell;
    shell.end_at_once();
    PackageActions actions({files_, shell, registry_, frame_}, {}, &scripted_wait);
    UninstallEntry entry = msi_entry();
    entry.uninstallCmd = row.registered;
    actions.uninstall(entry);
    ASSERT_EQ(shell.starts().size(), 1u);
    EXPECT_EQ(shell.starts()[0].file + '|' + shell.starts()[0].arguments, row.started);
  }
}

TEST_F(PackageActionsTest, InstallersCommandIsOnlyForItsProducts) {
  UninstallEntry entry = plain_entry();
  entry.uninstallCmd = "msiexec.exe /I{3}";
  actions_.uninstall(entry);
  EXPECT_EQ(starts(), "msiexec.exe|/I{3}");
}

TEST_F(PackageActionsTest, AProductThatForbidsRemovalKeepsItsUninstallCommand) {
  UninstallEntry entry = msi_entry();
  entry.noRemove = 1;
  entry.uninstallCmd = "MsiExec.exe /I{1111-2222}";
  actions_.uninstall(entry);
  EXPECT_EQ(starts(), "MsiExec.exe|/I{1111-2222}");
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, ModifyStartsTheInstallerWhereNoCommandIsRegistered) {
  actions_.modify(msi_entry());
  EXPECT_EQ(starts(), "msiexec.exe|/i {1111-2222}");
}

TEST_F(PackageActionsTest, ModifyKeepsARegisteredCommand) {
  UninstallEntry entry = msi_entry();
  entry.modifyCmd = "MsiExec.exe /I{1111-2222}";
  actions_.modify(entry);
  EXPECT_EQ(starts(), "MsiExec.exe|/I{1111-2222}");
}

TEST_F(PackageActionsTest, AnEmptyCommandStartsNothingAndTheRefreshFollows) {
  UninstallEntry entry = msi_entry();
  entry.noRemove = 1;
  entry.noModify = 1;
  actions_.uninstall(entry);
  EXPECT_EQ(frame_.refreshes, 1);
  actions_.modify(entry);
  EXPECT_EQ(frame_.refreshes, 2);
  for (const char* blank : {" ", "    ", "\"\"", "\"\" /x"}) {
    entry = plain_entry();
    entry.uninstallCmd = blank;
    actions_.uninstall(entry);
  }
  EXPECT_EQ(frame_.refreshes, 6);
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_EQ(waits_, 0);
}

TEST_F(PackageActionsTest, CancelChangesNothingAndStartsNoCycle) {
  registry_.create(key_of("{1111-2222}"));
  registry_.clear_calls();
  frame_.answer = false;
  actions_.uninstall(plain_entry());
  actions_.repair(msi_entry());
  actions_.remove(msi_entry());
  EXPECT_EQ(frame_.boxes.size(), 3u);
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_TRUE(registry_.calls().empty());
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, AStartThatIsRefusedIsNotReportedAndTheRefreshFollows) {
  shell_.refuse_all();
  actions_.uninstall(plain_entry());
  EXPECT_EQ(frame_.refreshes, 1);
  actions_.modify(plain_entry());
  EXPECT_EQ(frame_.refreshes, 2);
  actions_.repair(msi_entry());
  EXPECT_EQ(frame_.refreshes, 3);
  EXPECT_EQ(frame_.boxes.size(), 2u) << "the questions only";
  EXPECT_EQ(waits_, 0);
}

TEST_F(PackageActionsTest, WhatGivesNoProcessIsNotWaitedFor) {
  shell_.give_no_process();
  actions_.uninstall(plain_entry());
  EXPECT_EQ(shell_.starts().size(), 1u);
  EXPECT_EQ(waits_, 0);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, UninstallAddsNoRefreshToThatOfAChangeNotice) {
  scripted = [this](Items items, size_t count) {
    ++frame_.refresh_count;
    return real_wait(items, count);
  };
  actions_.uninstall(plain_entry());
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, ARefreshWhileUninstallAsksDoesNotCount) {
  frame_.during_box = [this] { ++frame_.refresh_count; };
  actions_.uninstall(plain_entry());
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, ModifyAndRepairRefreshWhateverHappenedMeanwhile) {
  scripted = [this](Items items, size_t count) {
    ++frame_.refresh_count;
    return real_wait(items, count);
  };
  actions_.modify(plain_entry());
  actions_.repair(msi_entry());
  EXPECT_EQ(frame_.refreshes, 2);
}

TEST_F(PackageActionsTest, TheProcessIsLetGoBeforeTheRefresh) {
  class LookingFrame final : public RecordingFrame {
   public:
    explicit LookingFrame(MemoryShell& shell) : shell_(shell) {}
    void requestRefresh() override { owned = shell_.owned_processes(); }
    size_t owned = 99;

   private:
    MemoryShell& shell_;
  };
  LookingFrame frame(shell_);
  PackageActions actions({files_, shell_, registry_, frame}, {}, &scripted_wait);
  actions.modify(plain_entry());
  EXPECT_EQ(frame.owned, 0u);
}

TEST_F(PackageActionsTest, NothingIsRefreshedAfterAWaitThatTheEndOfTheWindowEnds) {
  MemoryShell shell;
  PackageActions actions({files_, shell, registry_, frame_}, {}, &scripted_wait);
  scripted = [&](Items items, size_t count) {
    frame_.is_closing = true;
    actions.close();
    EXPECT_EQ(real_wait(items, count), 1);
    return 1;
  };
  actions.uninstall(plain_entry());
  frame_.is_closing = false;
  actions.modify(plain_entry());
  frame_.is_closing = false;
  actions.repair(msi_entry());
  EXPECT_EQ(shell.starts().size(), 3u);
  EXPECT_EQ(shell.owned_processes(), 0u);
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, NothingIsRefreshedAfterAProcessThatEndsWhileTheWindowCloses) {
  scripted = [this](Items items, size_t count) {
    frame_.is_closing = true;
    return real_wait(items, count);
  };
  actions_.modify(plain_entry());
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, NothingIsStartedWhenTheWindowClosesUnderTheQuestion) {
  registry_.create(key_of("{1111-2222}"));
  frame_.during_box = [this] { frame_.is_closing = true; };
  actions_.uninstall(plain_entry());
  actions_.repair(msi_entry());
  actions_.remove(msi_entry());
  EXPECT_EQ(frame_.boxes.size(), 3u);
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_TRUE(has_key("{1111-2222}"));
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, AWaitThatIsOvertakenGoesOn) {
  int waits = 0;
  scripted = [&](Items items, size_t count) {
    return ++waits < 4 ? ORLO::kWaitOvertaken : real_wait(items, count);
  };
  actions_.modify(plain_entry());
  EXPECT_EQ(waits, 4);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, AQuitGivesTheWaitUpWithoutARefresh) {
  int waits = 0;
  scripted = [&](Items, size_t) {
    ++waits;
    return ORLO::kWaitQuit;
  };
  actions_.uninstall(plain_entry());
  actions_.modify(plain_entry());
  actions_.repair(msi_entry());
  EXPECT_EQ(waits, 3);
  EXPECT_EQ(frame_.refreshes, 0);
  EXPECT_EQ(shell_.owned_processes(), 0u);
}

TEST_F(PackageActionsTest, OneCloseEndsThreeNestedWaitsAndThoseThatBeginLater) {
  MemoryShell shell;
  PackageActions actions({files_, shell, registry_, frame_}, {}, &scripted_wait);
  int depth = 0;
  int deepest = 0;
  int ended_by_close = 0;
  scripted = [&](Items items, size_t count) {
    deepest = std::max(deepest, ++depth);
    if (depth == 2) actions.repair(msi_entry());
    if (depth == 1 && deepest == 1) actions.modify(plain_entry());
    if (depth == 3) {
      frame_.is_closing = true;
      actions.close();
    }
    const int result = real_wait(items, count);
    ended_by_close += result == 1;
    --depth;
    return result;
  };
  actions.uninstall(plain_entry());
  EXPECT_EQ(deepest, 3);
  EXPECT_EQ(ended_by_close, 3);
  actions.modify(plain_entry());
  EXPECT_EQ(ended_by_close, 4);
  EXPECT_EQ(shell.owned_processes(), 0u);
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, AWaitThatItsProcessEndsLeavesTheNextOneAlone) {
  MemoryShell shell;
  PackageActions actions({files_, shell, registry_, frame_}, {}, &scripted_wait);
  scripted = [&](Items items, size_t count) {
    shell.end_process(0);
    return real_wait(items, count);
  };
  actions.modify(plain_entry());
  int result = 0;
  scripted = [&](Items items, size_t count) {
    result = ORLO::wait_with_messages(items, count, 20);
    return ORLO::kWaitQuit;
  };
  actions.modify(plain_entry());
  EXPECT_EQ(result, ORLO::kWaitTimedOut);
}

TEST_F(PackageActionsTest, AnInnerActionEndsBeforeTheOneAroundIt) {
  MemoryShell shell;
  PackageActions actions({files_, shell, registry_, frame_}, {}, &scripted_wait);
  bool nested = false;
  scripted = [&](Items items, size_t count) {
    if (!std::exchange(nested, true)) {
      actions.modify(plain_entry());
      EXPECT_EQ(frame_.refreshes, 1);
      shell.end_process(0);
    } else {
      shell.end_process(1);
    }
    return real_wait(items, count);
  };
  actions.uninstall(plain_entry());
  EXPECT_EQ(shell.starts().size(), 2u);
  EXPECT_EQ(frame_.refreshes, 1) << "the inner one's refresh counts for the outer one";
}

TEST_F(PackageActionsTest, RemoveDeletesTheKeyAndRefreshes) {
  registry_.create(key_of("birch_is1"));
  registry_.create(key_of("other"));
  actions_.remove(plain_entry());
  EXPECT_EQ(frame_.boxes,
            std::vector<std::string>{"confirm Entfernen des Registry-Eintrags: rm Birch [birch]"});
  EXPECT_FALSE(has_key("birch_is1"));
  EXPECT_TRUE(has_key("other"));
  EXPECT_EQ(frame_.refreshes, 1);
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(PackageActionsTest, RemoveReachesTheRootOfTheEntry) {
  registry_.create(key_of("birch_is1"));
  registry_.create(std::string("HKEY_CURRENT_USER\\") + kUninstall + "\\birch_is1");
  UninstallEntry entry = plain_entry();
  entry.HKEY_ROOT = kCurrentUser;
  actions_.remove(entry);
  EXPECT_TRUE(has_key("birch_is1"));
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(PackageActionsTest, RemoveStopsAfterItsQuestionWhereTheEntryHasNoRoot) {
  UninstallEntry entry = plain_entry();
  entry.HKEY_ROOT = 0;
  actions_.remove(entry);
  EXPECT_EQ(frame_.boxes.size(), 1u);
  EXPECT_TRUE(registry_.calls().empty());
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, ARefusedRemovalShowsWhyAndRefreshesNothing) {
  registry_.create(key_of("birch_is1"));
  registry_.fail("delete_key", "", kRegAccessDenied);
  actions_.remove(plain_entry());
  ASSERT_EQ(frame_.boxes.size(), 2u);
  EXPECT_EQ(frame_.boxes[1],
            std::string("warn Exc: ") + ORLO::SDKException(kRegAccessDenied).what());
  EXPECT_TRUE(has_key("birch_is1"));
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, AKeyWithSubkeysOrNoKeyAtAllIsNotRemoved) {
  registry_.create(key_of("birch_is1\\below"));
  actions_.remove(plain_entry());
  EXPECT_TRUE(has_key("birch_is1\\below"));
  actions_.remove(msi_entry());
  ASSERT_EQ(frame_.boxes.size(), 4u);
  EXPECT_EQ(frame_.boxes[3],
            std::string("warn Exc: ") + ORLO::SDKException(kRegFileNotFound).what());
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST_F(PackageActionsTest, AnEntryWithoutAKeyNameDoesNotRemoveTheKeyOfAll) {
  registry_.create(std::string("HKEY_LOCAL_MACHINE\\") + kUninstall);
  for (const char* name : {"", "\\", "\\\\"}) {
    SCOPED_TRACE(name);
    UninstallEntry entry = plain_entry();
    entry.keyName = name;
    actions_.remove(entry);
    EXPECT_TRUE(has_key(""));
  }
  EXPECT_EQ(frame_.boxes.size(), 6u);
  EXPECT_EQ(frame_.refreshes, 0);
}

/// A text of words of 9 letters.
std::string words(char letter, size_t length) {
  std::string text(length, letter);
  for (size_t at = 9; at < length; at += 10)
    text[at] = ' ';
  return text;
}

TEST_F(PackageActionsTest, AProcessThatCannotBeWaitedForIsFollowedByARefresh) {
  scripted = [](Items, size_t) -> int { throw ORLO::LWE(); };
  actions_.modify(plain_entry());
  actions_.uninstall(plain_entry());
  EXPECT_EQ(frame_.refreshes, 2);
  EXPECT_EQ(shell_.owned_processes(), 0u);
}

TEST_F(PackageActionsTest, QuestionsHold100CharactersWithoutABlank) {
  UninstallEntry entry = plain_entry();
  entry.displayName = "a " + std::string(100, 'b') + " c";
  actions_.uninstall(entry);
  entry.displayName = "a " + std::string(101, 'b') + " c";
  actions_.uninstall(entry);
  const std::string start = "confirm Uninstallation: un a " + std::string(100, 'b');
  EXPECT_EQ(frame_.boxes[0], start + " c [birch]");
  EXPECT_EQ(frame_.boxes[1], start + "... [birch]");
}

TEST_F(PackageActionsTest, QuestionsShowANameInOneParagraph) {
  UninstallEntry entry = plain_entry();
  entry.displayName = "a\r\nb\tc\x01 d";
  actions_.uninstall(entry);
  EXPECT_EQ(frame_.boxes[0], "confirm Uninstallation: un a b c d [birch]");
}

TEST_F(PackageActionsTest, QuestionsCutLongNamesButCommandsDoNot) {
  UninstallEntry entry = msi_entry();
  entry.displayName = words('d', 100'000);
  entry.name = std::string(501, 'n');
  actions_.uninstall(entry);
  const std::string shown = "un " + words('d', 497) + "... [" + std::string(100, 'n') + "...]";
  EXPECT_EQ(frame_.boxes[0], "confirm Uninstallation: " + shown);
  EXPECT_EQ(starts(), "msiexec.exe|/x " + std::string(501, 'n'));
  actions_.repair(entry);
  EXPECT_EQ(frame_.boxes[1], "confirm Repair: fix" + shown.substr(2));
  actions_.remove(entry);
  EXPECT_EQ(frame_.boxes[2], "confirm Entfernen des Registry-Eintrags: rm" + shown.substr(2));
}

TEST_F(PackageActionsTest, QuestionsHoldNamesOf500CharactersWhole) {
  UninstallEntry entry = plain_entry();
  entry.displayName = words('d', 500);
  actions_.uninstall(entry);
  EXPECT_EQ(frame_.boxes[0], "confirm Uninstallation: un " + words('d', 500) + " [birch]");
}

TEST_F(PackageActionsTest, ALongKeyNameIsNotCutOnItsWayToTheRegistry) {
  UninstallEntry entry = plain_entry();
  entry.keyName = std::string(100'000, 'k');
  actions_.remove(entry);
  ASSERT_EQ(registry_.calls().size(), 1u);
  EXPECT_EQ(registry_.calls()[0].size(),
            std::string("delete_key \\").size() + sizeof kUninstall - 1 + 100'000);
  EXPECT_EQ(frame_.boxes.size(), 2u);
}

TEST_F(PackageActionsTest, PercentSignsInNamesAreNoFormat) {
  UninstallEntry entry = plain_entry();
  entry.displayName = "100%s %d";
  actions_.uninstall(entry);
  EXPECT_EQ(frame_.boxes[0], "confirm Uninstallation: un 100%s %d [birch]");
}

}  // namespace
