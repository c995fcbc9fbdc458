// The contract of temporary_files_contract_test.cpp on the system's own files.
#include <windows.h>

#include "platform/temporary_files_test_support.h"

namespace {

class SystemTemporaryFilesBed final : public TemporaryFilesBed {
 public:
  TemporaryFiles& files() override { return *files_; }
  /// Needs a right, or the developer mode; and not every system that says that it has made one has.
  bool make_link(const std::string& target, const std::string& link) override {
    constexpr DWORD kUnprivileged = 2;
    WIN32_FIND_DATAA found{};
    if (!CreateSymbolicLinkA(link.c_str(), target.c_str(), kUnprivileged)) return false;
    const HANDLE search = FindFirstFileA(link.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  }

 private:
  const std::unique_ptr<TemporaryFiles> files_ = make_system_temporary_files();
};

/// The folder for temporary files, for its scope.
class TempVariables {
 public:
  explicit TempVariables(const std::string& folder) {
    for (const char* name : {"TMP", "TEMP"}) {
      char former[1024] = "";
      GetEnvironmentVariableA(name, former, sizeof former);
      former_.emplace_back(name, former);
      SetEnvironmentVariableA(name, folder.c_str());
    }
  }
  ~TempVariables() {
    for (const auto& [name, former] : former_)
      SetEnvironmentVariableA(name.c_str(), former.c_str());
  }
  TempVariables(const TempVariables&) = delete;
  TempVariables& operator=(const TempVariables&) = delete;

 private:
  std::vector<std::pair<std::string, std::string>> former_;
};

TEST(SystemTemporaryFiles, AreWhereTheUserHasThem) {
  const TempVariables variables(R"(C:\windows)");
  EXPECT_STRCASEEQ(make_system_temporary_files()->folder().c_str(), R"(C:\windows\)");
}

TEST(SystemTemporaryFiles, HaveNoFolderWhosePathIsTooLong) {
  const TempVariables variables("C:\\" + std::string(300, 'x'));
  const auto files = make_system_temporary_files();
  EXPECT_LT(files->folder().length(), static_cast<size_t>(MAX_PATH));
  EXPECT_EQ(files->folder().c_str()[0] == '\0' || files->folder().c_str()[1] == ':', true);
}

TEST(SystemTemporaryFiles, DoNotTakeThePlaceOfADevice) {
  const auto files = make_system_temporary_files();
  const TempFolder place;
  for (const char* path : {"NUL", "nul", "COM1", "LPT1", "CON", R"(\\.\NUL)", R"(\\.\pipe\x)"})
    EXPECT_FALSE(files->can_replace(path)) << path;
  // Whether such a name is a device in any folder depends on the system.
  const std::string device = place.path("NUL");
  if (files->can_replace(device.c_str())) {
    place.make("NUL", "x");
    EXPECT_EQ(place.content("NUL"), "x");
  }
}

TEST(SystemTemporaryFiles, DoNotTakeThePlaceOfWhatHasNoPath) {
  const auto files = make_system_temporary_files();
  EXPECT_FALSE(files->can_replace(("C:\\" + std::string(2000, 'x')).c_str()));
  EXPECT_FALSE(files->can_replace("C:\\a*b"));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, TemporaryFilesContract,
                         ::testing::Values(TemporaryFilesBedMaker{
                             "Own", [] { return std::make_unique<SystemTemporaryFilesBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
