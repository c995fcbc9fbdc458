#include "platform/memory_files.h"

#include <gtest/gtest.h>

TEST(MemoryFiles, AddsTheFoldersThatAFileLiesIn) {
  MemoryFiles files;
  files.add_file("C:\\Program Files\\App\\un.exe");
  EXPECT_TRUE(files.can_open("c:\\program files\\app"));
  EXPECT_TRUE(files.can_open("C:\\Program Files\\"));
  EXPECT_TRUE(files.can_open("C:\\"));
  EXPECT_FALSE(files.can_open("C:\\Program"));
}

TEST(MemoryFiles, SearchesItsFoldersInTheirOrder) {
  MemoryFiles files;
  files.add_file("C:\\one\\tool.exe");
  files.add_file("C:\\two\\tool.exe");
  files.add_search_folder("C:\\two");
  files.add_search_folder("C:\\one");
  EXPECT_STREQ(files.search_path("tool", ".exe")->c_str(), "C:\\two\\tool.exe");
}

TEST(MemoryFiles, KeepsSharesApartFromDrives) {
  MemoryFiles files;
  files.add_file("\\\\server\\share\\a.exe");
  EXPECT_TRUE(files.is_file("\\\\SERVER\\share\\\\a.exe"));
  EXPECT_FALSE(files.is_file("server\\share\\a.exe"));
  EXPECT_STREQ(files.search_path("\\\\server\\share\\a", ".exe")->c_str(),
               "\\\\server\\share\\a.exe");
}

TEST(MemoryFiles, FindsNothingRelativeToAFolder) {
  MemoryFiles files;
  files.add_file("C:\\sub\\a.exe");
  files.add_search_folder("C:");
  EXPECT_FALSE(files.is_file("sub\\a.exe"));
  EXPECT_FALSE(files.search_path("sub\\a.exe", ".exe"));
}

TEST(MemoryFiles, FailsTheOperationsThatItIsTold) {
  MemoryFiles files;
  files.add_file("C:\\a.exe");
  files.fail("is_file");
  files.fail("expand_environment");
  EXPECT_FALSE(files.is_file("C:\\a.exe"));
  EXPECT_FALSE(files.expand_environment("x", 10));
  EXPECT_TRUE(files.can_open("C:\\a.exe"));
  files.fail("can_open");
  EXPECT_TRUE(files.search_path("C:\\a", ".exe"));
  files.fail("search_path");
  EXPECT_FALSE(files.can_open("C:\\a.exe"));
  EXPECT_FALSE(files.search_path("C:\\a", ".exe"));
}

TEST(MemoryFiles, LogsItsCalls) {
  MemoryFiles files;
  files.is_file("C:\\a.exe");
  files.can_open("C:\\b");
  files.search_path("c", ".exe");
  files.expand_environment("%D%", 10);
  EXPECT_EQ(files.calls(), (std::vector<std::string>{"is_file C:\\a.exe", "can_open C:\\b",
                                                     "search_path c", "expand_environment %D%"}));
}

TEST(MemoryFiles, HasTheSystemFolderThatItIsTold) {
  MemoryFiles files;
  files.set_system_folder("D:\\Sys 32");
  EXPECT_STREQ(files.system_folder()->c_str(), "D:\\Sys 32");
  files.set_system_folder(std::string(260, 'x'));
  EXPECT_FALSE(files.system_folder());
  files.set_system_folder(std::string(259, 'x'));
  EXPECT_TRUE(files.system_folder());
  files.fail("system_folder");
  EXPECT_FALSE(files.system_folder());
}

TEST(MemoryFiles, HasTheWindowsFolderThatItIsTold) {
  MemoryFiles files;
  EXPECT_STREQ(files.windows_folder()->c_str(), "C:\\Windows");
  files.set_windows_folder("D:\\Win");
  EXPECT_STREQ(files.windows_folder()->c_str(), "D:\\Win");
  files.set_windows_folder(std::string(260, 'x'));
  EXPECT_FALSE(files.windows_folder());
  files.set_windows_folder(std::string(259, 'x'));
  files.fail("windows_folder");
  EXPECT_FALSE(files.windows_folder());
}
