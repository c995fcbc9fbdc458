// Both families of files against what other programs do with the same file, and against each
// other's completions on one thread.
#include <windows.h>

#include "orlo/file_test_support.h"
#include "orlo/owned_handle.h"
#include "orlo/read_line.h"

namespace {

using namespace ORLO;

constexpr size_t kBlock = kFileBufferSize;

struct FileTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using OwnedFile = OwnedHandle<FileTraits>;

OwnedFile open_elsewhere(const std::string& path, DWORD access, DWORD share) {
  return OwnedFile(CreateFileA(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
}

class FileOnTarget : public FileFamilyTest {};
INSTANTIATE_TEST_SUITE_P(Both, FileOnTarget, ::testing::ValuesIn(kFileFamilies), family_name);

TEST_P(FileOnTarget, AFileThatSomeoneHoldsForHimselfCannotBeOpened) {
  const std::string path = folder.make("in", "abc");
  {
    const OwnedFile other = open_elsewhere(path, GENERIC_READ, 0);
    ASSERT_TRUE(other);
    EXPECT_TRUE(GetParam().open_in(path, 0)->failed());
    EXPECT_TRUE(GetParam().open_out(path)->failed());
  }
  EXPECT_FALSE(GetParam().open_in(path, 0)->failed());
}

TEST_P(FileOnTarget, ALogThatIsBeingWrittenCanBeRead) {
  const std::string path = folder.make("in", "first\n");
  const OwnedFile writer = open_elsewhere(path, GENERIC_WRITE, FILE_SHARE_READ);
  ASSERT_TRUE(writer);
  const auto file = GetParam().open_in(path, 0);
  ASSERT_FALSE(file->failed());
  LineBuffer line(16);
  EXPECT_EQ(read_line(*file, line), 5);
  EXPECT_EQ(read_line(*file, line), -1);
}

TEST_P(FileOnTarget, NoHandleIsLeftOpen) {
  const std::string path = folder.make("in", numbered_text(3 * kBlock));
  for (int i = 0; i < 100; ++i) {
    EXPECT_NE(GetParam().open_in(path, 0)->get(), -1);
    EXPECT_TRUE(GetParam().open_in(folder.path("none"), 0)->failed());
  }
  GetParam().open_out(path)->put('x');
  EXPECT_TRUE(DeleteFileA(path.c_str()));
}

TEST_P(FileOnTarget, ManyFilesOfOneThreadKeepApart) {
  std::vector<std::unique_ptr<InFile>> files;
  std::vector<std::string> texts;
  for (size_t i = 0; i < 10; ++i) {
    const std::string name = "in" + std::to_string(i);
    texts.push_back(std::string(5 * kBlock, static_cast<char>('a' + i)));
    files.push_back(GetParam().open_in(folder.make(name.c_str(), texts[i]), 0));
  }
  std::vector<std::string> read(files.size());
  char piece[1000];
  for (bool more = true; more;) {
    more = false;
    for (size_t i = 0; i < files.size(); ++i) {
      const size_t count = files[i]->read(piece, sizeof piece);
      read[i].append(piece, count);
      more = more || count != 0;
    }
  }
  EXPECT_EQ(read, texts);
}

/// A pipe that nothing is written to: its reads stay under way.
class SilentPipe {
 public:
  SilentPipe() : name_("\\\\.\\pipe\\zolvane-test-" + std::to_string(GetCurrentProcessId())) {
    server_.reset(CreateNamedPipeA(name_.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 4096,
                                   4096, 0, nullptr));
  }
  const char* name() const { return name_.c_str(); }

 private:
  const std::string name_;
  OwnedFile server_;
};

TEST(OverlappedInFile, EndsWithItsReadUnderWay) {
  const SilentPipe pipe;
  const OverlappedInFile file(pipe.name(), kOpenExisting, 0, 0);
  EXPECT_FALSE(file.failed());
  EXPECT_TRUE(file.good());
}

TEST(OverlappedInFile, GivesUpAReadUnderWayForASeek) {
  const SilentPipe pipe;
  OverlappedInFile file(pipe.name(), kOpenExisting, 0, 0);
  EXPECT_FALSE(file.failed());
  file.seek(100);
  EXPECT_EQ(file.tell(), 100u);
}

TEST(RawFile, OfAPipeReadsNothingInsteadOfWaiting) {
  const SilentPipe pipe;
  const auto file = open_raw_file(pipe.name(), FileAccess::read, kOpenExisting, 0, 0);
  ASSERT_NE(file, nullptr);
  char byte = 'a';
  const Transfer transfer = file->read(0, &byte, 1);
  EXPECT_EQ(transfer.count, 0u);
  EXPECT_NE(transfer.error, 0u);
  EXPECT_EQ(byte, 'a');
}

TEST(RawFile, OfADeviceTakesWhatIsWritten) {
  const auto file = open_raw_file("NUL", FileAccess::write, kOpenExisting, 0, 0);
  ASSERT_NE(file, nullptr);
  const Transfer transfer = file->write(0, "abc", 3);
  EXPECT_EQ(transfer.count, 3u);
  EXPECT_EQ(transfer.error, 0u);
}

TEST(CreateTemporaryFile, InAFolderWhosePathIsTooLongMakesNothing) {
  const TempFolder folder;
  std::string path = folder.path("");
  while (path.size() < 300) {
    path += "xxxxxxx\\";
    if (path.size() <= 246) continue;
    try {
      ORLO::create_temporary_file(path + "list.csv");
      ADD_FAILURE() << path.size();
    } catch (const ORLO::LWE& failure) {
      EXPECT_EQ(failure.code, static_cast<uint32_t>(ERROR_FILENAME_EXCED_RANGE)) << path.size();
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path(""))) << path.size();
  }
}

TEST(CreateTemporaryFile, InAFolderOfTheLongestPathMakesAFile) {
  const TempFolder folder;
  std::string path = folder.path("");
  path.append(245 - path.size(), 'x');
  std::filesystem::create_directory(path);
  const String name = ORLO::create_temporary_file(path + "\\list.csv");
  EXPECT_TRUE(std::filesystem::exists(name.c_str()));
}

}  // namespace
