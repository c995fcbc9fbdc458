#include "orlo/folders.h"

#include <gtest/gtest.h>

#include <fstream>

#include "orlo/file_test_support.h"

namespace {

bool can_write(const std::string& path) {
  return std::ofstream(path).good();
}

TEST(CreateFolderOf, CreatesAllParentsThatAreMissing) {
  const TempFolder folder;
  const std::string path = folder.path("one/two/three/file.txt");
  EXPECT_FALSE(can_write(path));
  ORLO::create_folder_of(path);
  EXPECT_TRUE(can_write(path));
}

TEST(CreateFolderOf, LeavesWhatIsThere) {
  const TempFolder folder;
  const std::string path = folder.path("one/file.txt");
  ORLO::create_folder_of(path);
  ASSERT_TRUE(can_write(path));
  ORLO::create_folder_of(path);
  ORLO::create_folder_of(folder.path("one/two/file.txt"));
  EXPECT_TRUE(std::ifstream(path).good());
  EXPECT_TRUE(can_write(folder.path("one/two/file.txt")));
}

TEST(CreateFolderOf, PassesOverAFileInTheWay) {
  const TempFolder folder;
  ASSERT_TRUE(can_write(folder.path("file")));
  ORLO::create_folder_of(folder.path("file/below/file.txt"));
  EXPECT_FALSE(can_write(folder.path("file/below/file.txt")));
}

TEST(CreateFolderOf, DoesNothingForAPathWithoutFolders) {
  ORLO::create_folder_of("");
  ORLO::create_folder_of("file.txt");
  EXPECT_FALSE(std::ifstream("file.txt").good());
}

}  // namespace
