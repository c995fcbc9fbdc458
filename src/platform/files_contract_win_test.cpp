// The contract of files_contract_test.cpp on the system's own files.
#include <windows.h>

#include <string>
#include <vector>

#include "orlo/owned_handle.h"
#include "platform/files_test_support.h"

namespace {

struct FileTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};

std::string current_folder() {
  char path[MAX_PATH] = "";
  GetCurrentDirectoryA(MAX_PATH, path);
  return path;
}

std::string temp_folder() {
  char path[MAX_PATH] = "";
  const DWORD length = GetTempPathA(MAX_PATH, path);
  return std::string(path, length) + "zolvane-" + std::to_string(GetCurrentProcessId());
}

class SystemFilesBed final : public FilesBed {
 public:
  SystemFilesBed()
      : files_(make_system_files()), folder_(temp_folder()), former_folder_(current_folder()) {
    CreateDirectoryA(folder_.c_str(), nullptr);
    made_.push_back(folder_);
  }

  ~SystemFilesBed() override {
    SetCurrentDirectoryA(former_folder_.c_str());
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) {
      if (!DeleteFileA(path->c_str())) RemoveDirectoryA(path->c_str());
    }
    for (const std::string& name : variables_)
      SetEnvironmentVariableA(name.c_str(), nullptr);
  }

  Files& files() override { return *files_; }
  std::string folder() const override { return folder_; }

  void add_file(const std::string& path) override {
    const size_t separator = path.rfind('\\');
    if (separator != std::string::npos) add_folder(path.substr(0, separator));
    made_.push_back(folder_ + '\\' + path);
    const ORLO::OwnedHandle<FileTraits> file(CreateFileA(made_.back().c_str(), GENERIC_WRITE, 0,
                                                         nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                                                         nullptr));
    EXPECT_TRUE(file);
  }

  void add_folder(const std::string& path) override {
    const std::string whole = folder_ + '\\' + path;
    if (CreateDirectoryA(whole.c_str(), nullptr)) made_.push_back(whole);
  }

  void set_variable(const std::string& name, const std::string& value) override {
    EXPECT_TRUE(SetEnvironmentVariableA(name.c_str(), value.c_str()));
    variables_.push_back(name);
  }

  void search_in(const std::string& path) override {
    EXPECT_TRUE(SetCurrentDirectoryA((folder_ + '\\' + path).c_str()));
  }

 private:
  std::unique_ptr<Files> files_;
  const std::string folder_;
  const std::string former_folder_;
  std::vector<std::string> made_;
  std::vector<std::string> variables_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, FilesContract,
                         ::testing::Values(FilesBedMaker{
                             "Own", [] { return std::make_unique<SystemFilesBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SystemFiles, FindsProgramsInTheSystemFolder) {
  char system[MAX_PATH] = "";
  GetSystemDirectoryA(system, MAX_PATH);
  const auto found = make_system_files()->search_path("rundll32", ".exe");
  ASSERT_TRUE(found);
  EXPECT_EQ(lstrcmpiA(found->c_str(), (std::string(system) + "\\rundll32.exe").c_str()), 0);
}

TEST(SystemFiles, KnowsTheVariablesOfTheSystem) {
  char windows[MAX_PATH] = "";
  GetWindowsDirectoryA(windows, MAX_PATH);
  const auto expanded = make_system_files()->expand_environment("%SystemRoot%", 1024);
  ASSERT_TRUE(expanded);
  EXPECT_EQ(lstrcmpiA(expanded->c_str(), windows), 0);
  const auto folder = make_system_files()->windows_folder();
  ASSERT_TRUE(folder);
  EXPECT_STREQ(folder->c_str(), windows);
}

TEST(SystemFiles, NamesTheFolderThatHoldsTheSystemsPrograms) {
  const auto files = make_system_files();
  const auto folder = files->system_folder();
  ASSERT_TRUE(folder);
  EXPECT_TRUE(files->is_file(String::formatted("%s\\rundll32.exe", *folder).c_str()));
}
