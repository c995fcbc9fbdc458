// The log while other programs have it open.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_F(UpdateLogInUse, IsLeftOpenByNobody) {
  for (int i = 0; i < 10; ++i)
    read_update_log(path_);
  EXPECT_TRUE(DeleteFileA(path_.c_str()));
}

}  // namespace
