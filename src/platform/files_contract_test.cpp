// What Files promises, tested on the files in memory here and on the system's own in
// files_contract_win_test.cpp.
#include "platform/files_test_support.h"
#include "platform/memory_files.h"

namespace {

class MemoryFilesBed final : public FilesBed {
 public:
  Files& files() override { return files_; }
  std::string folder() const override { return "C:\\Temp\\zolvane"; }
  void add_file(const std::string& path) override { files_.add_file(folder() + '\\' + path); }
  void add_folder(const std::string& path) override { files_.add_folder(folder() + '\\' + path); }
  void set_variable(const std::string& name, const std::string& value) override {
    files_.set_variable(name, value);
  }
  void search_in(const std::string& path) override {
    files_.add_search_folder(folder() + '\\' + path);
  }

 private:
  MemoryFiles files_;
};

}  // namespace

std::string FilesContract::search(const std::string& name) {
  const auto found = bed().files().search_path(name.c_str(), ".exe");
  return found ? found->c_str() : "-";
}

std::string FilesContract::expand(const std::string& text, size_t limit) {
  const auto expanded = bed().files().expand_environment(text.c_str(), limit);
  return expanded ? expanded->c_str() : "-";
}

INSTANTIATE_TEST_SUITE_P(Memory, FilesContract,
                         ::testing::Values(FilesBedMaker{
                             "Own", [] { return std::make_unique<MemoryFilesBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(FilesContract, TellsFilesFromFoldersAndFromNothing) {
  bed().add_file("sub\\a.exe");
  EXPECT_TRUE(is_file("sub\\a.exe"));
  EXPECT_FALSE(is_file("sub"));
  EXPECT_FALSE(is_file("sub\\b.exe"));
  EXPECT_FALSE(is_file("none\\a.exe"));
  EXPECT_FALSE(bed().files().is_file(""));
}

TEST_P(FilesContract, OpensFilesAndFolders) {
  bed().add_file("sub\\a.exe");
  EXPECT_TRUE(can_open("sub\\a.exe"));
  EXPECT_TRUE(can_open("sub"));
  EXPECT_FALSE(can_open("sub\\b.exe"));
  EXPECT_FALSE(can_open("none\\a.exe"));
  EXPECT_FALSE(bed().files().can_open(""));
}

TEST_P(FilesContract, OverlooksCase) {
  bed().add_file("Sub\\\xC4pfel.exe");
  EXPECT_TRUE(is_file("SUB\\\xE4pfel.EXE"));
  EXPECT_TRUE(can_open("sub\\\xC4PFEL.exe"));
}

TEST_P(FilesContract, UnderstandsUntidyPaths) {
  bed().add_file("sub\\a.exe");
  for (const char* path : {"sub/a.exe", "sub\\\\a.exe", "sub\\.\\a.exe", "sub\\..\\sub\\a.exe",
                           "sub\\a.exe ", "sub\\a.exe.", "sub\\a.exe. . "}) {
    SCOPED_TRACE(path);
    EXPECT_TRUE(is_file(path));
    EXPECT_TRUE(can_open(path));
  }
}

TEST_P(FilesContract, TakesASeparatorAtTheEndOnlyForAFolderThatIsOpened) {
  bed().add_file("sub\\a.exe");
  EXPECT_TRUE(can_open("sub\\"));
  EXPECT_FALSE(can_open("sub\\a.exe\\"));
  EXPECT_FALSE(is_file("sub\\"));
  EXPECT_FALSE(is_file("sub\\a.exe\\"));
}

TEST_P(FilesContract, FindsAFileByAPatternForItsName) {
  bed().add_file("sub\\abc.exe");
  EXPECT_TRUE(is_file("sub\\a*.exe"));
  EXPECT_TRUE(is_file("sub\\AB?.exe"));
  EXPECT_FALSE(is_file("sub\\b*.exe"));
  EXPECT_FALSE(is_file("s*\\abc.exe")) << "only the last piece is a pattern";
  EXPECT_FALSE(is_file("sub\\*")) << "the folder itself comes first";
  EXPECT_FALSE(can_open("sub\\a*.exe"));
}

TEST_P(FilesContract, SearchesByNameAndAddsTheExtension) {
  bed().add_file("tools\\tool.exe");
  bed().add_file("tools\\text.txt");
  bed().add_file("tools\\two.dots.exe");
  bed().search_in("tools");
  EXPECT_EQ(search("tool"), whole("tools\\tool.exe"));
  EXPECT_EQ(search("tool.exe"), whole("tools\\tool.exe"));
  EXPECT_EQ(search("text.txt"), whole("tools\\text.txt"));
  EXPECT_EQ(search("text"), "-") << "found only with the extension given";
  EXPECT_EQ(search("two.dots"), "-") << "the name has an extension";
  EXPECT_EQ(search("nosuchtool"), "-");
  EXPECT_EQ(search(""), "-");
}

TEST_P(FilesContract, LooksAtAWholePathAloneAndWithTheExtension) {
  bed().add_file("Program.exe");
  bed().add_file("Program Files\\un.exe");
  bed().add_file("plain");
  EXPECT_EQ(search(whole("Program")), whole("Program.exe"));
  EXPECT_EQ(search(whole("Program Files\\un")), whole("Program Files\\un.exe"));
  EXPECT_EQ(search(whole("Program Files\\un.exe")), whole("Program Files\\un.exe"));
  EXPECT_EQ(search(whole("plain")), whole("plain"));
  EXPECT_EQ(search(whole("none")), "-");
}

TEST_P(FilesContract, FindsFoldersToo) {
  bed().add_folder("Program Files");
  EXPECT_EQ(search(whole("Program Files")), whole("Program Files"));
  EXPECT_FALSE(is_file("Program Files"));
}

TEST_P(FilesContract, TidiesThePathThatASearchFinds) {
  bed().add_file("sub\\a.exe");
  EXPECT_EQ(search(whole("sub//a")), whole("sub\\a.exe"));
  EXPECT_EQ(search(whole("sub\\x\\..\\a.exe")), whole("sub\\a.exe"));
}

TEST_P(FilesContract, FindsNothingWhereThePathDoesNotFit) {
  EXPECT_EQ(search(whole(std::string(300, 'x'))), "-");
  EXPECT_EQ(search(std::string(300, 'x')), "-");
}

TEST_P(FilesContract, ExpandsVariables) {
  bed().set_variable("ZolvaneOne", "first");
  bed().set_variable("ZOLVANE_TWO", "%ZolvaneOne%");
  const struct {
    const char* text;
    const char* expected;
  } rows[] = {
      {"", ""},
      {"plain", "plain"},
      {"%ZolvaneOne%", "first"},
      {"%ZOLVANEone%", "first"},
      {"<%ZolvaneOne%\\x>", "<first\\x>"},
      {"%ZolvaneOne%%ZolvaneOne%", "firstfirst"},
      {"%ZOLVANE_TWO%", "%ZolvaneOne%"},
      {"%ZOLVANE_NONE%", "%ZOLVANE_NONE%"},
      {"%ZOLVANE_NONE%ZolvaneOne%", "%ZOLVANE_NONE%ZolvaneOne%"},
      {"100%", "100%"},
      {"%ZolvaneOne", "%ZolvaneOne"},
      {"%%", "%%"},
      {"%%ZolvaneOne%%", "%%ZolvaneOne%%"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(expand(row.text), row.expected);
  }
}

TEST_P(FilesContract, ExpandsOnlyWhatFitsWithItsTerminator) {
  bed().set_variable("ZolvaneLong", std::string(500, '\xE4'));
  EXPECT_EQ(expand("%ZolvaneLong%", 501), std::string(500, '\xE4'));
  EXPECT_EQ(expand("%ZolvaneLong%", 500), "-");
  EXPECT_EQ(expand("%ZolvaneLong%%ZolvaneLong%", 1001), std::string(1000, '\xE4'));
  EXPECT_EQ(expand("%ZolvaneLong%%ZolvaneLong%", 1000), "-");
  EXPECT_EQ(expand("%ZolvaneLong%%ZolvaneLong%%ZolvaneLong%"), "-");
  EXPECT_EQ(expand(std::string(1023, 'x')), std::string(1023, 'x'));
  EXPECT_EQ(expand(std::string(1024, 'x')), "-");
  EXPECT_EQ(expand(std::string(1025, 'x')), "-");
  for (const size_t length : {size_t{1023}, size_t{1024}, size_t{1025}}) {
    SCOPED_TRACE(length);
    const std::string value(length, 'x');
    bed().set_variable("ZolvaneLong", value);
    EXPECT_EQ(expand("%ZolvaneLong%"), length < 1024 ? value : "-");
  }
}

TEST_P(FilesContract, ExpandsNoEndlessText) {
  for (const size_t length : {32000U, 32001U, 32765U, 32766U, 32767U, 32768U, 65535U, 70000U}) {
    SCOPED_TRACE(length);
    EXPECT_EQ(expand(std::string(length, 'x')), "-");
    EXPECT_EQ(expand(std::string(length, 'x'), 100000),
              length > 32000 ? "-" : std::string(length, 'x'));
  }
}

TEST_P(FilesContract, KnowsTheSystemsFolders) {
  for (const auto& folder : {bed().files().system_folder(), bed().files().windows_folder()}) {
    ASSERT_TRUE(folder);
    ASSERT_FALSE(folder->empty());
    EXPECT_NE(folder->c_str()[folder->length() - 1], '\\');
  }
}
