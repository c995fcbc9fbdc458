// The actions with real programs, waited for while messages flow.
#include "actions/package_actions.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "actions/actions_test_support.h"
#include "actions/shell_command.h"
#include "orlo/controller.h"
#include "orlo/window.h"
#include "platform/memory_registry.h"
#include "platform/shell_win_test_support.h"

namespace {

constexpr UINT kNext = WM_APP + 1;

/// Runs its script for each message kNext.
class ScriptedWindow final : public ORLO::Controller {
 public:
  ScriptedWindow(HWND window, std::function<void()> script)
      : Controller(window), script_(std::move(script)) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != kNext) return Controller::WndProc(message, wparam, lparam);
    script_();
    return 0;
  }

 private:
  const std::function<void()> script_;
};

class WindowFrame final : public RecordingFrame {
 public:
  explicit WindowFrame(std::function<void()> script)
      : window_(ORLO::Window::create({}, [&](HWND made) {
          return std::make_unique<ScriptedWindow>(made, std::move(script));
        })) {}
  ~WindowFrame() override { DestroyWindow(window_); }
  WindowFrame(const WindowFrame&) = delete;
  WindowFrame& operator=(const WindowFrame&) = delete;
  void* owner() override { return window_; }
  void post() { PostMessageA(window_, kNext, 0, 0); }

 private:
  const HWND window_;
};

UninstallEntry entry_for(const std::string& arguments) {
  UninstallEntry entry = plain_entry();
  entry.uninstallCmd = "cmd.exe " + arguments;
  entry.modifyCmd = entry.uninstallCmd;
  return entry;
}

class RealPackageActions : public testing::Test {
 protected:
  std::unique_ptr<Files> files_ = make_system_files();
  std::unique_ptr<Shell> shell_ = make_system_shell();
  MemoryRegistry registry_;
  std::function<void()> on_message_ = [] {};
  WindowFrame frame_{[this] { on_message_(); }};
  PackageActions actions_{{*files_, *shell_, registry_, frame_}, {"%s", "%s", "%s", "Exc"}};
};

TEST_F(RealPackageActions, WaitForTheInstallersEnd) {
  HeldProgram held;
  bool running = false;
  on_message_ = [&] {
    running = frame_.refreshes == 0;
    held.end();
  };
  frame_.post();
  actions_.uninstall(entry_for(HeldProgram::arguments()));
  EXPECT_TRUE(running);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(RealPackageActions, RefreshAfterAnInstallerThatIsNotThere) {
  UninstallEntry entry = plain_entry();
  entry.modifyCmd = "\"C:\\no such folder\\setup.exe\" /m";
  actions_.modify(entry);
  EXPECT_EQ(frame_.refreshes, 1);
}

TEST_F(RealPackageActions, ThreeNestedWaitsEndByOneClose) {
  HeldProgram held;
  const UninstallEntry entry = entry_for(HeldProgram::arguments());
  int depth = 0;
  on_message_ = [&] {
    if (++depth < 3) {
      frame_.post();
      actions_.modify(entry);
    } else {
      frame_.is_closing = true;
      actions_.close();
    }
  };
  frame_.post();
  actions_.uninstall(entry);
  EXPECT_EQ(depth, 3);
  EXPECT_EQ(frame_.refreshes, 0);
}

TEST(RealShellCommand, SplitsHostileTextsOf32KB) {
  const auto files = make_system_files();
  const size_t length = size_t{32} * 1024;
  std::string words;
  while (words.size() < length)
    words.append("a ");
  for (const std::string& text :
       {std::string(length, 'x'), std::string(length, ' '), std::string(length, '"'), words}) {
    const ShellCommand command = ShellCommand::parse(text, *files);
    EXPECT_TRUE(command.file.empty());
    EXPECT_FALSE(make_system_shell()->open(command.start(nullptr)));
  }
}

}  // namespace
