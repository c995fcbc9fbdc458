// A disk without room and links, as build machines can have them.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "update/download.h"
#include "update/update_check_test_support.h"

namespace {

namespace fs = std::filesystem;

/// The devices' folder, whose file "full" has no room.
class DeviceFolder : public TemporaryFiles {
 public:
  String folder() override { return "/dev/"; }
  bool can_replace(const char* /*path*/) override { return true; }
  void remove(const char* path) override { ADD_FAILURE() << path; }
};

/// Lets no file of this process grow beyond a length, for its scope.
class LimitedFiles {
 public:
  explicit LimitedFiles(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~LimitedFiles() {
    setrlimit(RLIMIT_FSIZE, &before_);
    static_cast<void>(std::signal(SIGXFSZ, handler_));
  }
  LimitedFiles(const LimitedFiles&) = delete;
  LimitedFiles& operator=(const LimitedFiles&) = delete;

 private:
  rlimit before_{};
  void (*const handler_)(int);
};

class FullDiskTest : public UpdateBed {
 protected:
  String fetch(TemporaryFiles& files, const char* url) {
    const UpdateServices there{internet_, key_, files, shell_, clock_, nullptr};
    return Download(settings_, there, frame_).downloadFile(url, "zolvane 5.3", nullptr);
  }
};

TEST_F(FullDiskTest, CountsAsAnIncompleteTransfer) {
  const char* const url = "http://download.example/full";
  DeviceFolder devices;
  // The short one is written when the file is closed.
  for (const size_t length : {size_t{10}, size_t{1} << 20}) {
    SCOPED_TRACE(length);
    serve(url, std::string(length, 'x'));
    EXPECT_TRUE(fetch(devices, url).empty());
  }
}

TEST_F(FullDiskTest, LeavesThePartialFile) {
  constexpr size_t kRoom = 10000;
  serve(kSetupUrl, std::string(5 * kRoom, 'x'));
  String path = "untouched";
  {
    const LimitedFiles limit(kRoom);
    path = fetch(files_, kSetupUrl);
  }
  EXPECT_TRUE(path.empty());
  EXPECT_EQ(fs::file_size(folder_.path("setup.exe")), kRoom);
}

TEST_F(FullDiskTest, StartsNothing) {
  serve(kSetupUrl, std::string(50000, 'x'));
  PadInfo info;
  info.downloadUrl = kSetupUrl;
  const UpdateServices all = services();
  {
    const LimitedFiles limit(1000);
    EXPECT_FALSE(Download(settings_, all, frame_).downloadAndRun(info));
  }
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_EQ(left_files(), Lines{"setup.exe"});
}

using LinkedFileTest = FullDiskTest;

TEST_F(LinkedFileTest, IsLeftAloneUnderTheSetupsName) {
  const std::string elsewhere = folder_.make("elsewhere", "kept");
  fs::create_symlink(elsewhere, folder_.path("setup.exe"));
  serve(kSetupUrl, "new");
  EXPECT_EQ(fetch(files_, kSetupUrl).c_str(), in_folder("setup.exe"));
  EXPECT_EQ(folder_.content("elsewhere"), "kept");
}

TEST_F(LinkedFileTest, IsLeftAloneUnderTheMarkersName) {
  const std::string elsewhere = folder_.make("elsewhere", "kept");
  fs::create_symlink(elsewhere, folder_.path("zolvane.tmp"));
  serve(kSetupUrl, "new");
  PadInfo info;
  info.downloadUrl = kSetupUrl;
  const UpdateServices all = services();
  EXPECT_FALSE(Download(settings_, all, frame_).downloadAndRun(info));
  EXPECT_TRUE(fs::is_symlink(folder_.path("zolvane.tmp")));
  EXPECT_EQ(folder_.content("elsewhere"), "kept");
  EXPECT_EQ(shell_.starts().size(), 1u);
}

}  // namespace
