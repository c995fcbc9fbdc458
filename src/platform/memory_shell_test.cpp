#include "platform/memory_shell.h"

#include <gtest/gtest.h>

namespace {

ShellStart start_of(const char* file) {
  ShellStart start;
  start.file = file;
  return start;
}

TEST(MemoryShell, LogsEachStartWhole) {
  MemoryShell shell;
  int window = 0;
  shell.open({&window, "a.exe", "/s  1", "runas", 7});
  shell.open_process(start_of("b.exe"));
  ASSERT_EQ(shell.starts().size(), 2u);
  const MemoryShell::Start& first = shell.starts()[0];
  EXPECT_FALSE(first.waits);
  EXPECT_EQ(first.owner, &window);
  EXPECT_EQ(first.file, "a.exe");
  EXPECT_EQ(first.arguments, "/s  1");
  EXPECT_EQ(first.verb, "runas");
  EXPECT_EQ(first.show, 7);
  const MemoryShell::Start& second = shell.starts()[1];
  EXPECT_TRUE(second.waits);
  EXPECT_EQ(second.owner, nullptr);
  EXPECT_EQ(second.file, "b.exe");
  EXPECT_EQ(second.arguments, "");
  EXPECT_EQ(second.verb, "open");
  EXPECT_EQ(second.show, 1);
}

TEST(MemoryShell, LogsWhatItRefusesButNotWhatNoShellIsAskedFor) {
  MemoryShell shell;
  shell.refuse("C:\\Gone.exe");
  EXPECT_FALSE(shell.open(start_of("c:\\gONE.exe")));
  EXPECT_FALSE(shell.open(start_of(" ")));
  EXPECT_EQ(shell.starts().size(), 1u);
  EXPECT_TRUE(shell.open(start_of("C:\\here.exe")));
  shell.refuse_all();
  EXPECT_FALSE(shell.open(start_of("C:\\here.exe")));
  EXPECT_FALSE(shell.open_process(start_of("C:\\here.exe")).ok);
}

TEST(MemoryShell, GivesNoProcessWhereItIsTold) {
  MemoryShell shell;
  shell.give_no_process();
  const Shell::Started started = shell.open_process(start_of("a.txt"));
  EXPECT_TRUE(started.ok);
  EXPECT_EQ(started.process, nullptr);
}

TEST(MemoryShell, EndsTheProcessOfThatNumber) {
  MemoryShell shell;
  const Shell::Started first = shell.open_process(start_of("a.exe"));
  shell.open(start_of("x.exe"));
  const Shell::Started second = shell.open_process(start_of("b.exe"));
  shell.end_process(1);
  EXPECT_TRUE(ORLO::wait_for(*second.process, 20000));
  EXPECT_FALSE(ORLO::wait_for(*first.process, 50));
}

TEST(MemoryShell, CountsTheProcessesThatAreOwned) {
  MemoryShell shell;
  Shell::Started first = shell.open_process(start_of("a.exe"));
  const Shell::Started second = shell.open_process(start_of("b.exe"));
  EXPECT_EQ(shell.owned_processes(), 2u);
  shell.end_process(1);
  EXPECT_EQ(shell.owned_processes(), 2u);
  first.process.reset();
  EXPECT_EQ(shell.owned_processes(), 1u);
  shell.end_process(0);
}

TEST(MemoryShell, MayGoBeforeItsProcesses) {
  Shell::Started started;
  {
    MemoryShell shell;
    started = shell.open_process(start_of("a.exe"));
  }
  EXPECT_FALSE(ORLO::wait_for(*started.process, 20));
}

}  // namespace
