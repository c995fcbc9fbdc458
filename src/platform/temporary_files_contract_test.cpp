// What TemporaryFiles promises, tested on those in a folder of choice here and on the system's own
// in temporary_files_contract_win_test.cpp.
#include "orlo/folders.h"
#include "platform/memory_temporary_files.h"
#include "platform/temporary_files_test_support.h"

namespace fs = std::filesystem;

namespace {

class FolderBed final : public TemporaryFilesBed {
 public:
  TemporaryFiles& files() override { return files_; }
  bool make_link(const std::string& target, const std::string& link) override {
    std::error_code error;
    fs::create_symlink(target, link, error);
    return !error;
  }

 private:
  FolderTemporaryFiles files_{place().path("")};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Folder, TemporaryFilesContract,
                         ::testing::Values(TemporaryFilesBedMaker{
                             "Own", [] { return std::make_unique<FolderBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(TemporaryFilesContract, HaveAFolderWithASeparatorAtItsEnd) {
  const String folder = files().folder();
  ASSERT_FALSE(folder.empty());
  EXPECT_TRUE(ORLO::is_folder_separator(folder.c_str()[folder.length() - 1]));
  EXPECT_TRUE(fs::is_directory(folder.c_str()));
}

TEST_P(TemporaryFilesContract, TakeThePlaceOfNothing) {
  EXPECT_TRUE(can_replace("setup.exe"));
}

TEST_P(TemporaryFilesContract, TakeThePlaceOfAPlainFile) {
  place().make("setup.exe", "old");
  place().make("empty.exe", "");
  EXPECT_TRUE(can_replace("setup.exe"));
  EXPECT_TRUE(can_replace("empty.exe"));
  EXPECT_EQ(place().content("setup.exe"), "old");
}

TEST_P(TemporaryFilesContract, DoNotTakeThePlaceOfAFolder) {
  fs::create_directory(place().path("folder"));
  EXPECT_FALSE(can_replace("folder"));
  EXPECT_FALSE(can_replace(""));
  EXPECT_FALSE(files().can_replace(""));
}

TEST_P(TemporaryFilesContract, DoNotTakeThePlaceOfALink) {
  place().make("target", "kept");
  if (!make_link("target", "link")) GTEST_SKIP() << "no links can be made here";
  ASSERT_TRUE(make_link("nothing", "dangling"));
  EXPECT_FALSE(can_replace("link"));
  EXPECT_FALSE(can_replace("dangling"));
}

TEST_P(TemporaryFilesContract, RemoveAFile) {
  const std::string path = place().make("setup.exe", "old");
  files().remove(path.c_str());
  EXPECT_FALSE(fs::exists(path));
}

TEST_P(TemporaryFilesContract, LeaveAFolderAndWhatIsNotThere) {
  fs::create_directory(place().path("folder"));
  files().remove(place().path("folder").c_str());
  files().remove(place().path("nothing").c_str());
  files().remove("");
  EXPECT_TRUE(fs::is_directory(place().path("folder")));
}

TEST(FolderTemporaryFiles, HaveOneSeparatorAtTheEndOfTheirFolder) {
  const char last = FolderTemporaryFiles("x").folder().c_str()[1];
  EXPECT_TRUE(ORLO::is_folder_separator(last));
  EXPECT_STREQ(FolderTemporaryFiles("x/").folder().c_str(), "x/");
  EXPECT_STREQ(FolderTemporaryFiles("").folder().c_str(), "");
}
