// The contract of shell_contract_test.cpp on the system's own shell, and what real programs do.
#include <windows.h>

#include "orlo/kernel_handles.h"
#include "platform/shell_test_support.h"
#include "platform/shell_win_test_support.h"

namespace {

constexpr uint32_t kSoon = 20000;

std::string temp_path(const std::string& name) {
  char folder[MAX_PATH] = "";
  const DWORD length = GetTempPathA(MAX_PATH, folder);
  return std::string(folder, length) + "zolvane-" + std::to_string(GetCurrentProcessId()) + name;
}

class SystemShellBed final : public ShellBed {
 public:
  Shell& shell() override { return *shell_; }
  ShellTarget short_program() override { return {"cmd.exe", "/c exit"}; }
  ShellTarget long_program() override { return {"cmd.exe", held_.arguments()}; }
  void end_programs() override { held_.end(); }
  ShellTarget missing_file() override { return {temp_path("\\none.exe"), ""}; }

 private:
  const std::unique_ptr<Shell> shell_ = make_system_shell();
  HeldProgram held_;
};

DWORD exit_code(const ORLO::Waitable& process) {
  DWORD code = 0;
  GetExitCodeProcess(process.native(), &code);
  return code;
}

Shell::Started start(const std::string& file, const std::string& arguments = std::string()) {
  return make_system_shell()->open_process(ShellTarget{file, arguments}.start());
}

/// Ends what has no end of its own; a start may have given no process, too.
void expect_an_end(const Shell::Started& started) {
  if (started.process == nullptr) return;
  TerminateProcess(started.process->native(), 0);
  EXPECT_TRUE(ORLO::wait_for(*started.process, kSoon));
}

TEST(SystemShell, HandsTheArgumentsOver) {
  const Shell::Started started = start("cmd.exe", "/c exit 7");
  ASSERT_NE(started.process, nullptr);
  ASSERT_TRUE(ORLO::wait_for(*started.process, kSoon));
  EXPECT_EQ(exit_code(*started.process), 7u);
}

TEST(SystemShell, HandsLongArgumentsOver) {
  const Shell::Started started = start("cmd.exe", "/c exit 7" + std::string(2000, ' '));
  ASSERT_NE(started.process, nullptr);
  ASSERT_TRUE(ORLO::wait_for(*started.process, kSoon));
  EXPECT_EQ(exit_code(*started.process), 7u);
}

TEST(SystemShell, ComesBackWithArgumentsOf32KB) {
  expect_an_end(start("cmd.exe", "/c exit " + std::string(size_t{32} * 1024, 'x')));
}

TEST(SystemShell, ComesBackWithTheLongestFileThatItTakes) {
  EXPECT_FALSE(start(std::string(kLongestShellFile, 'x')).ok);
}

TEST(SystemShell, OpensAFolder) {
  char folder[MAX_PATH] = "";
  GetWindowsDirectoryA(folder, MAX_PATH);
  const Shell::Started started = start(folder);
  EXPECT_TRUE(started.ok);
  expect_an_end(started);
}

TEST(SystemShell, OpensADocumentWithItsProgram) {
  const std::string path = temp_path(".ini");
  const ORLO::OwnedFile file(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                         CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  ASSERT_TRUE(file);
  const Shell::Started started = start(path);
  EXPECT_TRUE(started.ok);
  expect_an_end(started);
  DeleteFileA(path.c_str());
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, ShellContract,
                         ::testing::Values(ShellBedMaker{
                             "Own", [] { return std::make_unique<SystemShellBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
