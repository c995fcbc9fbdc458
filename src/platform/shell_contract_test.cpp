// What Shell promises, tested on the shell in memory here and on the system's own in
// shell_contract_win_test.cpp.
#include "platform/memory_shell.h"
#include "platform/shell_test_support.h"

namespace {

constexpr uint32_t kSoon = 20000;
constexpr uint32_t kAWhile = 300;

/// Its short programs have ended when they are asked for.
class MemoryShellBed final : public ShellBed {
 public:
  MemoryShellBed() { shell_.refuse("C:\\none.exe"); }

  Shell& shell() override { return shell_; }
  ShellTarget short_program() override {
    shell_.end_at_once();
    return {"C:\\short.exe", ""};
  }
  ShellTarget long_program() override { return {"C:\\long.exe", ""}; }
  void end_programs() override {
    for (size_t i = 0; i < shell_.starts().size(); ++i)
      shell_.end_process(i);
  }
  ShellTarget missing_file() override { return {"C:\\none.exe", ""}; }

 private:
  MemoryShell shell_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, ShellContract,
                         ::testing::Values(ShellBedMaker{
                             "Own", [] { return std::make_unique<MemoryShellBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ShellContract, SignalsTheEndOfAProcessAndKeepsItSignalled) {
  const ShellTarget program = bed().short_program();
  const Shell::Started started = shell().open_process(program.start());
  ASSERT_TRUE(started.ok);
  ASSERT_NE(started.process, nullptr);
  EXPECT_TRUE(ORLO::wait_for(*started.process, kSoon));
  EXPECT_TRUE(ORLO::wait_for(*started.process, 0));
}

TEST_P(ShellContract, SignalsNothingWhileTheProcessRuns) {
  const ShellTarget program = bed().long_program();
  const Shell::Started started = shell().open_process(program.start());
  ASSERT_TRUE(started.ok);
  ASSERT_NE(started.process, nullptr);
  EXPECT_FALSE(ORLO::wait_for(*started.process, kAWhile));
  bed().end_programs();
  EXPECT_TRUE(ORLO::wait_for(*started.process, kSoon));
}

TEST_P(ShellContract, LetsGoOfAProcessThatRunsOn) {
  const ShellTarget program = bed().long_program();
  Shell::Started started = shell().open_process(program.start());
  ASSERT_TRUE(started.ok);
  started.process.reset();
  bed().end_programs();
}

TEST_P(ShellContract, OpensWithoutAProcess) {
  const ShellTarget program = bed().short_program();
  EXPECT_TRUE(shell().open(program.start()));
}

TEST_P(ShellContract, RefusesAFileThatIsNotThere) {
  const ShellTarget none = bed().missing_file();
  EXPECT_FALSE(shell().open(none.start()));
  const Shell::Started started = shell().open_process(none.start());
  EXPECT_FALSE(started.ok);
  EXPECT_EQ(started.process, nullptr);
}

TEST_P(ShellContract, RefusesAFileThatNamesNothing) {
  for (const char* file :
       {static_cast<const char*>(nullptr), "", " ", "\t", "\n", "\v", "\f", "\r", " \t  "}) {
    SCOPED_TRACE(file == nullptr ? "null" : file);
    ShellStart start;
    start.file = file;
    EXPECT_FALSE(shell().open(start));
    start.arguments = "/c exit";
    EXPECT_FALSE(shell().open_process(start).ok);
  }
}

TEST_P(ShellContract, RefusesAFileThatIsLongerThanAnyPath) {
  const std::string much(size_t{32} * 1024, 'x');
  for (const std::string& file : {much, "C:\\" + much + ".exe", "http://" + much, much + " /s"}) {
    ShellStart start;
    start.file = file.c_str();
    EXPECT_FALSE(shell().open(start));
    EXPECT_FALSE(shell().open_process(start).ok);
  }
}

TEST(ShellFile, IsNeitherBlankNorEndless) {
  EXPECT_TRUE(can_ask_shell("x"));
  EXPECT_TRUE(can_ask_shell(" x "));
  EXPECT_TRUE(can_ask_shell(std::string(512, 'x').c_str()));
  EXPECT_FALSE(can_ask_shell(std::string(513, 'x').c_str()));
}
