#include "actions/shell_command.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/memory_files.h"
#include "platform/memory_shell.h"

namespace {

class ShellCommandTest : public testing::Test {
 protected:
  ShellCommandTest() {
    files_.add_file("C:\\Program Files\\App\\un.exe");
    files_.add_file("C:\\App\\text.txt");
    files_.add_file("C:\\Windows\\tool.exe");
    files_.add_search_folder("C:\\Windows");
    files_.set_variable("APPS", "C:\\Program Files");
  }

  ShellCommand parse(const std::string& text) { return ShellCommand::parse(text, files_); }
  void expect(const std::string& text, const std::string& path, const std::string& arguments,
              const std::string& file) {
    SCOPED_TRACE(text.substr(0, 100));
    const ShellCommand command = parse(text);
    EXPECT_EQ(command.path.c_str(), path);
    EXPECT_EQ(command.arguments.c_str(), arguments);
    EXPECT_EQ(command.file.c_str(), file);
    EXPECT_EQ(command.target().c_str(), file.empty() ? path : file);
  }

  MemoryFiles files_;
};

TEST_F(ShellCommandTest, AProgramThatIsAFileIsStartedAsItIs) {
  expect("\"C:\\Program Files\\App\\un.exe\"  /x  1", "C:\\Program Files\\App\\un.exe", "/x  1",
         "C:\\Program Files\\App\\un.exe");
}

TEST_F(ShellCommandTest, AProgramThatIsSearchedForIsStartedAsItWasWritten) {
  expect("tool /x 1", "C:\\Windows\\tool.exe", "/x 1", "tool");
  expect("\"tool\" /x 1", "C:\\Windows\\tool.exe", "/x 1", "tool");
}

TEST_F(ShellCommandTest, QuotedCommandAndUnquotedOneWithBlanksInItsPathAreTheSame) {
  for (const char* text :
       {"\"C:\\Program Files\\App\\un.exe\" /x", "C:\\Program Files\\App\\un.exe /x",
        " C:\\Program Files\\App\\un.exe   /x"}) {
    expect(text, "C:\\Program Files\\App\\un.exe", "/x", "C:\\Program Files\\App\\un.exe");
  }
}

TEST_F(ShellCommandTest, VariableIsExpandedInAQuotedPathButNotInTheArguments) {
  expect("\"%APPS%\\App\\un.exe\" %APPS%", "C:\\Program Files\\App\\un.exe", "%APPS%",
         "C:\\Program Files\\App\\un.exe");
}

TEST_F(ShellCommandTest, FirstPrefixThatExistsWins) {
  files_.add_file("C:\\Program.exe");
  expect("C:\\Program Files\\App\\un.exe /x", "C:\\Program.exe", "Files\\App\\un.exe /x",
         "C:\\Program");
}

TEST_F(ShellCommandTest, WhatIsNotThereIsLeftToTheShell) {
  expect("C:\\gone\\un.exe /x", "C:\\gone\\un.exe /x", "", "");
  expect("\"C:\\gone\\un.exe\" /x", "C:\\gone\\un.exe", "/x", "");
  expect("http://www.birch.example/", "http://www.birch.example/", "", "");
}

TEST_F(ShellCommandTest, AFolderIsOpenedByItsPath) {
  expect("C:\\Program Files\\App", "C:\\Program Files\\App", "", "");
  expect("\"C:\\Program Files\\App\"", "C:\\Program Files\\App", "", "");
}

TEST_F(ShellCommandTest, ADocumentCountsAsAFile) {
  expect("C:\\App\\text.txt", "C:\\App\\text.txt", "", "C:\\App\\text.txt");
}

TEST_F(ShellCommandTest, AQuoteThatDoesNotCloseHoldsTheWholeRest) {
  expect("\"C:\\Program Files\\App\\un.exe /x", "C:\\Program Files\\App\\un.exe", "/x",
         "C:\\Program Files\\App\\un.exe");
  expect("\"C:\\gone un.exe /x", "C:\\gone un.exe /x", "", "");
}

TEST_F(ShellCommandTest, NothingIsLeftOfATextWithoutAProgram) {
  expect("", "", "", "");
  expect(" ", "", "", "");
  expect("\"", "", "", "");
  expect("\"\"", "", "", "");
  expect("\"\"\"\"", "", "\"\"", "");
  expect("\"\" /x", "", "/x", "");
  expect("     ", "    ", "", "");
}

TEST_F(ShellCommandTest, NoShellIsAskedForATextWithoutAProgram) {
  for (const char* text :
       {"", " ", "     ", "\t\t", "\"", "\"\"", "\"\"\"\"", "\"  \" /x", "\"\" /x"}) {
    SCOPED_TRACE(text);
    MemoryShell shell;
    const ShellCommand command = parse(text);
    EXPECT_FALSE(shell.open(command.start(nullptr)));
    EXPECT_TRUE(shell.starts().empty());
  }
}

TEST_F(ShellCommandTest, TakesACommandOf32KB) {
  const std::string much(size_t{32} * 1024, 'x');
  expect(much, much, "", "");
  expect("tool " + much, "C:\\Windows\\tool.exe", much, "tool");
  expect("\"C:\\Program Files\\App\\un.exe\" " + much, "C:\\Program Files\\App\\un.exe", much,
         "C:\\Program Files\\App\\un.exe");
}

/// Finds nothing, and keeps no log.
class EmptyFiles final : public Files {
 public:
  bool is_file(const char*) override { return false; }
  bool can_open(const char*) override { return false; }
  std::optional<String> search_path(const char*, const char*) override { return std::nullopt; }
  std::optional<String> expand_environment(const char*, size_t) override { return std::nullopt; }
  std::optional<String> system_folder() override { return std::nullopt; }
  std::optional<String> windows_folder() override { return std::nullopt; }
};

TEST(ShellCommand, TakesBlanksOf32KB) {
  const std::string blanks(size_t{32} * 1024, ' ');
  EmptyFiles files;
  MemoryShell shell;
  const ShellCommand command = ShellCommand::parse(blanks, files);
  EXPECT_EQ(command.path.c_str(), blanks.substr(1));
  EXPECT_TRUE(command.arguments.empty());
  EXPECT_FALSE(shell.open(command.start(nullptr)));
}

TEST_F(ShellCommandTest, StartsWithAllThatTheShellIsToKnow) {
  int window = 0;
  const ShellCommand found = parse("tool /x");
  const ShellStart start = found.start(&window);
  EXPECT_EQ(start.owner, &window);
  EXPECT_STREQ(start.file, "tool");
  EXPECT_STREQ(start.arguments, "/x");
  EXPECT_STREQ(start.verb, "open");
  EXPECT_EQ(start.show, 1);
  const ShellCommand gone = parse("\"C:\\gone.exe\" /y");
  EXPECT_STREQ(gone.start(nullptr).file, "C:\\gone.exe");
}

}  // namespace
