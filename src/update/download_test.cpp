#include "update/download.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "orlo/exception.h"
#include "update/update_check_test_support.h"

namespace {

namespace fs = std::filesystem;

class DownloadTest : public UpdateBed {
 protected:
  Download download() { return {settings_, services_, frame_}; }
  std::string fetch(const std::string& url) {
    return download().downloadFile(url, "zolvane 5.3", nullptr).c_str();
  }
  bool run(const std::string& url = kSetupUrl) {
    PadInfo info;
    info.downloadUrl = url;
    return download().downloadAndRun(info);
  }

  const UpdateServices services_ = services();
};

/// A folder for temporary files that can't be told.
class NoTemporaryFiles : public TemporaryFiles {
 public:
  String folder() override { return {}; }
  bool can_replace(const char* /*path*/) override { return true; }
  void remove(const char* path) override { ADD_FAILURE() << path; }
};

TEST_F(DownloadTest, WritesTheBodyToAFileOfTheAddresssLastPart) {
  const std::string body("MZ\0\r\n\x1a\xff\n", 8);
  serve(kSetupUrl, body);
  EXPECT_EQ(fetch(kSetupUrl), in_folder("setup.exe"));
  EXPECT_EQ(folder_.content("setup.exe"), body);
  EXPECT_EQ(left_files(), Lines{"setup.exe"});
}

TEST_F(DownloadTest, TellsTheServerAgentAndReferrer) {
  serve(kSetupUrl, "x");
  download().downloadFile(kSetupUrl, "agent %s %n", nullptr);
  ASSERT_EQ(internet_.requests.size(), 1u);
  const MemoryInternet::Request& request = internet_.requests[0];
  EXPECT_EQ(request.agent, "agent %s %n");
  EXPECT_EQ(request.url, kSetupUrl);
  EXPECT_EQ(request.referrer, "agent %s %n download");
  EXPECT_EQ(request.flags, 0u);
  EXPECT_EQ(request.limit, 512u * 1024 * 1024);
}

TEST_F(DownloadTest, FetchesNothingFromAnAddressThatIsNotUnderstood) {
  EXPECT_EQ(fetch("no address"), "");
  EXPECT_EQ(fetch(""), "");
  EXPECT_EQ(fetch("http://download.example/" + std::string(300, 'a')), "");
  EXPECT_TRUE(internet_.requests.empty());
}

TEST_F(DownloadTest, FetchesNothingFromAnAddressWithoutAPath) {
  serve("http://download.example", "x");
  EXPECT_EQ(fetch("http://download.example"), "");
  EXPECT_TRUE(internet_.requests.empty());
}

TEST_F(DownloadTest, TakesAnAddressThatEndsInASlashForTheFolderItself) {
  serve("http://download.example/files/", "page");
  EXPECT_EQ(fetch("http://download.example/files/"), in_folder(""));
  EXPECT_EQ(internet_.requests.size(), 1u);
  EXPECT_TRUE(left_files().empty());
}

TEST_F(DownloadTest, TakesAPageOfTheRightLengthForTheSetup) {
  serve(kSetupUrl, "<html>404 Not Found</html>");
  EXPECT_EQ(fetch(kSetupUrl), in_folder("setup.exe"));
  EXPECT_EQ(folder_.content("setup.exe"), "<html>404 Not Found</html>");
}

TEST_F(DownloadTest, LeavesAPartialFileOfAShortBody) {
  internet_.answers[kSetupUrl] = {"half", 8, 0};
  EXPECT_EQ(fetch(kSetupUrl), "");
  EXPECT_EQ(folder_.content("setup.exe"), "half");
}

TEST_F(DownloadTest, LeavesAPartialFileOfABodyThatIsTooLong) {
  internet_.answers[kSetupUrl] = {"more than told", 4, 0};
  EXPECT_EQ(fetch(kSetupUrl), "");
  EXPECT_EQ(folder_.content("setup.exe"), "more than told");
}

TEST_F(DownloadTest, TakesABodyWithoutALengthAsComplete) {
  internet_.answers[kSetupUrl] = {"body", std::nullopt, 0};
  EXPECT_EQ(fetch(kSetupUrl), in_folder("setup.exe"));
}

TEST_F(DownloadTest, PassesOnAFailureAndLeavesThePartialFile) {
  internet_.answers[kSetupUrl] = {"part", 8, 12030};
  EXPECT_THROW(fetch(kSetupUrl), ORLO::INetException);
  EXPECT_EQ(folder_.content("setup.exe"), "part");
}

TEST_F(DownloadTest, ReplacesAnOlderFileOfThatName) {
  folder_.make("setup.exe", "an older and longer one");
  serve(kSetupUrl, "new");
  EXPECT_EQ(fetch(kSetupUrl), in_folder("setup.exe"));
  EXPECT_EQ(folder_.content("setup.exe"), "new");
}

TEST_F(DownloadTest, OpensNothingWhereAFolderHasThatName) {
  fs::create_directory(folder_.path("setup.exe"));
  serve(kSetupUrl, "new");
  EXPECT_EQ(fetch(kSetupUrl), in_folder("setup.exe"));
  EXPECT_TRUE(fs::is_directory(folder_.path("setup.exe")));
  EXPECT_TRUE(fs::is_empty(folder_.path("setup.exe")));
}

TEST_F(DownloadTest, NeitherOpensNorReturnsAFileThatItMayNotName) {
  for (const char* name : {"..\\setup.exe", "C:setup.exe", "a:b", "a\nb", "NUL", "com1.exe", "..",
                           "aux .txt", "CONOUT$"}) {
    SCOPED_TRACE(name);
    const std::string url = std::string("http://download.example/") + name;
    serve(url, "x");
    EXPECT_EQ(fetch(url), "");
    EXPECT_TRUE(left_files().empty());
    EXPECT_EQ(fetched().back(), url);
  }
}

TEST_F(DownloadTest, ReturnsNothingWithoutAFolder) {
  NoTemporaryFiles none;
  fs::remove("zolvane-stray.exe");  // of a run that failed
  serve("http://download.example/zolvane-stray.exe", "x");
  const UpdateServices there{internet_, key_, none, shell_, clock_, nullptr};
  const Download download(settings_, there, frame_);
  EXPECT_TRUE(
      download.downloadFile("http://download.example/zolvane-stray.exe", "a", nullptr).empty());
  EXPECT_FALSE(fs::exists("zolvane-stray.exe"));
}

TEST_F(DownloadTest, RunsTheSetupAndEndsTheProcess) {
  serve(kSetupUrl, std::string(2500, 'x'));
  EXPECT_FALSE(run());
  EXPECT_EQ(frame_.log,
            (Lines{std::string("show ") + kSetupUrl, "range 2", "position 1", "position 2",
                   "position 2", "close", "open " + in_folder("setup.exe"), "end", "cursor back"}));
  EXPECT_EQ(shell_.owner, frame_.window());
  EXPECT_EQ(shell_.show, 1);
  EXPECT_EQ(shell_.arguments, "");
  EXPECT_EQ(internet_.requests.at(0).agent, "zolvane 5.3");
}

TEST_F(DownloadTest, LeavesAMarkerWithThePathOfTheSetup) {
  serve(kSetupUrl, "x");
  run();
  EXPECT_EQ(folder_.content("zolvane.tmp"), in_folder("setup.exe") + "\n");
  EXPECT_EQ(left_files(), (Lines{"setup.exe", "zolvane.tmp"}));
}

TEST_F(DownloadTest, HasWrittenTheMarkerWhenTheSetupIsStarted) {
  class LookingShell : public MemoryShell {
   public:
    explicit LookingShell(const TempFolder& folder) : folder_(folder) {}
    bool open(const ShellStart& start) override {
      marker = folder_.content("zolvane.tmp");
      return MemoryShell::open(start);
    }
    std::string marker;

   private:
    const TempFolder& folder_;
  };
  LookingShell shell(folder_);
  serve(kSetupUrl, "x");
  PadInfo info;
  info.downloadUrl = kSetupUrl;
  const UpdateServices there{internet_, key_, files_, shell, clock_, nullptr};
  Download(settings_, there, frame_).downloadAndRun(info);
  EXPECT_EQ(shell.marker, in_folder("setup.exe") + "\n");
}

TEST_F(DownloadTest, ReplacesAnOlderMarker) {
  folder_.make("zolvane.tmp", "an older marker with a long line\n");
  serve(kSetupUrl, "x");
  run();
  EXPECT_EQ(folder_.content("zolvane.tmp"), in_folder("setup.exe") + "\n");
}

TEST_F(DownloadTest, LeavesAFolderOfTheMarkersNameAloneAndGoesOn) {
  fs::create_directory(folder_.path("zolvane.tmp"));
  serve(kSetupUrl, "x");
  run();
  EXPECT_TRUE(fs::is_directory(folder_.path("zolvane.tmp")));
  EXPECT_EQ(frame_.log[frame_.log.size() - 2], "end");
}

TEST_F(DownloadTest, LeavesTheMarkerAndTheProcessIfTheSetupCannotBeStarted) {
  serve(kSetupUrl, "x");
  shell_.refuse_all();
  EXPECT_FALSE(run());
  EXPECT_EQ(frame_.log.back(), "cursor back");
  EXPECT_EQ(frame_.log[frame_.log.size() - 2], "open " + in_folder("setup.exe"));
  EXPECT_EQ(left_files(), (Lines{"setup.exe", "zolvane.tmp"}));
}

TEST_F(DownloadTest, SaysNothingOfAnIncompleteTransfer) {
  internet_.answers[kSetupUrl] = {"half", 8, 0};
  EXPECT_FALSE(run());
  EXPECT_EQ(frame_.log, (Lines{std::string("show ") + kSetupUrl, "range 0", "position 0", "close",
                               "cursor back"}));
  EXPECT_EQ(left_files(), Lines{"setup.exe"});
}

TEST_F(DownloadTest, TakesTheDialogAwayWhenAnExceptionPasses) {
  EXPECT_THROW(run("http://unknown.example/setup.exe"), ORLO::INetException);
  EXPECT_EQ(frame_.log, (Lines{"show http://unknown.example/setup.exe", "close", "cursor back"}));
}

TEST_F(DownloadTest, LeavesTheBarAloneWithoutARange) {
  internet_.answers[kSetupUrl] = {std::string(1500, 'x'), std::nullopt, 0};
  run();
  EXPECT_EQ(frame_.log[1], "position 1");
}

TEST_F(DownloadTest, GivesASmallFileARangeOfZero) {
  serve(kSetupUrl, std::string(1023, 'x'));
  run();
  EXPECT_EQ(frame_.log[1], "range 0");
  EXPECT_EQ(frame_.log[2], "position 0");
  EXPECT_EQ(frame_.log[frame_.log.size() - 2], "end");
}

TEST_F(DownloadTest, GivesTheShellTheFolderForAnAddressThatEndsInASlash) {
  serve("http://download.example/files/", "page");
  run("http://download.example/files/");
  EXPECT_EQ(shell_.starts().at(0).file, in_folder(""));
  EXPECT_EQ(folder_.content("zolvane.tmp"), in_folder("") + "\n");
}

TEST_F(DownloadTest, GivesTheShellAPageInTheSetupsPlace) {
  serve(kSetupUrl, "<html>404 Not Found</html>");
  run();
  EXPECT_EQ(shell_.starts().at(0).file, in_folder("setup.exe"));
}

TEST_F(DownloadTest, GivesTheShellNothingThatItMayNotName) {
  serve("http://download.example/..\\setup.exe", "x");
  EXPECT_FALSE(run("http://download.example/..\\setup.exe"));
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_TRUE(left_files().empty());
}

}  // namespace
