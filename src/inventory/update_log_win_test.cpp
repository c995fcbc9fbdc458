// The log while other programs have it open.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "inventory/update_log_test_support.h"
#include "orlo/file_test_support.h"
#include "orlo/owned_handle.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

struct FileTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using OwnedFile = ORLO::OwnedHandle<FileTraits>;

class UpdateLogInUse : public testing::Test {
 protected:
  static OwnedFile hold(const std::string& path, DWORD access, DWORD share) {
    OwnedFile file(CreateFileA(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(file);
    return file;
  }

  const TempFolder folder_;
  const std::string path_ = folder_.make("log", success_line("KB1") + "\r\n");
};

TEST_F(UpdateLogInUse, GivesNoRowWhileSomebodyHasItForHimself) {
  {
    const OwnedFile other = hold(path_, GENERIC_READ, 0);
    EXPECT_THAT(read_update_log(path_), IsEmpty());
  }
  EXPECT_THAT(read_update_log(path_), SizeIs(1));
}

TEST_F(UpdateLogInUse, IsReadWhileTheServiceWritesIt) {
  const OwnedFile service = hold(path_, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
  EXPECT_THAT(read_update_log(path_), SizeIs(1));
}

TEST_F(UpdateLogInUse, GivesTheRowsBeforeAPartThatSomebodyHasForHimself) {
  std::string content;
  for (int line = 0; line < 10'000; ++line)
    content += success_line("KB" + std::to_string(line)) + "\r\n";
  const std::string path = folder_.make("long", content);
  const OwnedFile other = hold(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ);
  const auto middle = static_cast<DWORD>(content.size() / 2);
  ASSERT_TRUE(LockFile(other.get(), middle, 0, 1, 0));
  char byte = 0;
  DWORD read = 0;
  const OwnedFile reader = hold(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
  SetFilePointer(reader.get(), static_cast<LONG>(middle), nullptr, FILE_BEGIN);
  if (ReadFile(reader.get(), &byte, 1, &read, nullptr) != FALSE)
    GTEST_SKIP() << "this system lets everybody read what is locked";
  const auto rows = read_update_log(path);
  EXPECT_GT(rows.size(), 0u);
  EXPECT_LT(rows.size(), 5'001u);
}

TEST_F(UpdateLogInUse, IsLeftOpenByNobody) {
  for (int i = 0; i < 10; ++i)
    read_update_log(path_);
  EXPECT_TRUE(DeleteFileA(path_.c_str()));
}

}  // namespace
