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

}  // namespace
