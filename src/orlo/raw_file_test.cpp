#include "orlo/raw_file.h"

#include <gtest/gtest.h>

#include "orlo/file_test_support.h"

namespace {

TEST(DeleteFile, TakesAFileAway) {
  const TempFolder folder;
  const std::string path = folder.make("file", "content");
  ORLO::delete_file(path.c_str());
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(DeleteFile, PassesOverWhatIsNoFile) {
  const TempFolder folder;
  std::filesystem::create_directories(folder.path("folder"));
  ORLO::delete_file(folder.path("folder").c_str());
  ORLO::delete_file(folder.path("none").c_str());
  ORLO::delete_file("");
  EXPECT_TRUE(std::filesystem::exists(folder.path("folder")));
}

TEST(RenameFile, TakesThePlaceOfAFileThatIsThere) {
  const TempFolder folder;
  const std::string from = folder.make("from", "new");
  const std::string to = folder.make("to", "old and longer");
  EXPECT_EQ(ORLO::rename_file(from.c_str(), to.c_str()), 0u);
  EXPECT_EQ(folder.content("to"), "new");
  EXPECT_FALSE(std::filesystem::exists(from));
}

TEST(RenameFile, GivesAFreeName) {
  const TempFolder folder;
  EXPECT_EQ(ORLO::rename_file(folder.make("from", "new").c_str(), folder.path("to").c_str()), 0u);
  EXPECT_EQ(folder.content("to"), "new");
}

TEST(RenameFile, TellsWhyItCannot) {
  const TempFolder folder;
  const std::string from = folder.make("from", "new");
  std::filesystem::create_directories(folder.path("folder"));
  EXPECT_NE(ORLO::rename_file(from.c_str(), folder.path("folder").c_str()), 0u);
  EXPECT_NE(ORLO::rename_file(from.c_str(), folder.path("none/to").c_str()), 0u);
  EXPECT_NE(ORLO::rename_file(folder.path("none").c_str(), folder.path("to").c_str()), 0u);
  EXPECT_EQ(folder.content("from"), "new");
}

TEST(RenameFile, LeavesAFileThatMayOnlyBeRead) {
  const TempFolder folder;
  const std::string to = folder.make("to", "old");
  std::filesystem::permissions(to, std::filesystem::perms::owner_read);
  if (std::ofstream(to, std::ios::app)) GTEST_SKIP() << "this user may write every file";
  EXPECT_NE(ORLO::rename_file(folder.make("from", "new").c_str(), to.c_str()), 0u);
  EXPECT_EQ(folder.content("to"), "old");
  std::filesystem::permissions(to, std::filesystem::perms::owner_all);
}

TEST(CreateTemporaryFile, MakesANewEmptyFileBesideTheOther) {
  const TempFolder folder;
  const String neighbour = folder.path("some file.xls");
  const String first = ORLO::create_temporary_file(neighbour);
  const String second = ORLO::create_temporary_file(neighbour);
  EXPECT_STRNE(first.c_str(), second.c_str());
  for (const String& name : {first, second}) {
    const std::string own_name = std::filesystem::path(name.c_str()).filename().string();
    EXPECT_TRUE(std::filesystem::exists(folder.path(own_name.c_str())));
    EXPECT_EQ(std::filesystem::file_size(name.c_str()), 0u);
  }
  EXPECT_FALSE(std::filesystem::exists(neighbour.c_str()));
}

TEST(CreateTemporaryFile, ThrowsWithoutAFolder) {
  const TempFolder folder;
  EXPECT_THROW(ORLO::create_temporary_file(folder.path("none/file")), ORLO::LWE);
}

TEST(CreateTemporaryFile, OfANameWithoutAFolderLiesInTheCurrentOne) {
  const TempFolder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path(""));
  const String name = ORLO::create_temporary_file("list.csv");
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(folder.path("")) /
                                      std::filesystem::path(name.c_str()).filename()));
  std::filesystem::current_path(before);
}

}  // namespace
