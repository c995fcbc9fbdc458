#include "start/post_update.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "orlo/file_test_support.h"

namespace {

using Calls = std::vector<std::string>;

/// A real folder; what is removed is written down, the marker is removed indeed.
class FolderLeftovers final : public Leftovers {
 public:
  String temporary_folder() override { return folder_.path("").c_str(); }
  void remove(const char* path) override {
    calls.push_back(std::string("remove ") + std::filesystem::path(path).filename().string());
    removed = std::filesystem::remove(path);
  }
  void remove_at_next_start(const char* path) override {
    calls.push_back(std::string("at start ") + path);
  }

  void leave_marker(const std::string& content) { folder_.make("zolvane.tmp", content); }
  bool has_marker() const { return std::filesystem::exists(folder_.path("zolvane.tmp")); }

  Calls calls;
  bool removed = false;

 private:
  const TempFolder folder_;
};

TEST(PostUpdate, WithoutAMarkerEndsWith1AndTouchesNothing) {
  FolderLeftovers leftovers;
  EXPECT_EQ(clean_up_after_update(leftovers), 1);
  EXPECT_EQ(leftovers.calls, Calls());
}

TEST(PostUpdate, AMarkerWithoutALineEndsWith1AndStays) {
  for (const std::string& content :
       {std::string(), std::string("\n"), std::string("\r\nC:\\x.exe\n"), std::string("\0x", 2)}) {
    SCOPED_TRACE(content);
    FolderLeftovers leftovers;
    leftovers.leave_marker(content);
    EXPECT_EQ(clean_up_after_update(leftovers), 1);
    EXPECT_EQ(leftovers.calls, Calls());
    EXPECT_TRUE(leftovers.has_marker());
  }
}

TEST(PostUpdate, RemovesTheMarkerNowAndTheSetupAtTheNextStart) {
  for (const char* content :
       {"C:\\Temp\\zolvane setup.exe\n", "C:\\Temp\\zolvane setup.exe\r\n",
        "C:\\Temp\\zolvane setup.exe", "C:\\Temp\\zolvane setup.exe\nmore\n"}) {
    SCOPED_TRACE(content);
    FolderLeftovers leftovers;
    leftovers.leave_marker(content);
    EXPECT_EQ(clean_up_after_update(leftovers), 0);
    EXPECT_EQ(leftovers.calls,
              (Calls{"remove zolvane.tmp", "at start C:\\Temp\\zolvane setup.exe"}));
    EXPECT_TRUE(leftovers.removed) << "it isn't open any more";
    EXPECT_FALSE(leftovers.has_marker());
  }
}

TEST(PostUpdate, TakesAtMost260CharactersOfTheLine) {
  for (const size_t length : {size_t{260}, size_t{261}, size_t{100'000}}) {
    SCOPED_TRACE(length);
    FolderLeftovers leftovers;
    leftovers.leave_marker(std::string(length, 'x') + "\n");
    EXPECT_EQ(clean_up_after_update(leftovers), 0);
    ASSERT_EQ(leftovers.calls.size(), 2u);
    EXPECT_EQ(leftovers.calls[1], "at start " + std::string(260, 'x'));
  }
}

TEST(PostUpdate, AFolderOfTheMarkersNameEndsWith1) {
  FolderLeftovers leftovers;
  std::filesystem::create_directory(leftovers.temporary_folder().c_str() +
                                    std::string("zolvane.tmp"));
  EXPECT_EQ(clean_up_after_update(leftovers), 1);
  EXPECT_EQ(leftovers.calls, Calls());
}

}  // namespace
