// The contract of compound_storage_contract_test.cpp on the system's own compound files.
#include "platform/compound_file_win_test_support.h"
#include "platform/compound_storage_test_support.h"

namespace {

class SystemStorageBed final : public StorageBed {
 public:
  CompoundStorage& storage() override { return *storage_; }
  std::u16string path(const std::u16string& name) override { return folder_.file(name); }
  std::u16string path_without_folder() override { return folder_.file(u"none\\book.xls"); }
  std::optional<MemoryStorage::Streams> read(const std::u16string& path) override {
    return read_compound_file(path);
  }

 private:
  const std::unique_ptr<CompoundStorage> storage_ = make_system_storage();
  const TemporaryFolder folder_{u"zolvane-storage-"};
};

const wchar_t* wide(const std::u16string& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, StorageContract,
                         ::testing::Values(StorageBedMaker{
                             "Own", [] { return std::make_unique<SystemStorageBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SystemStorage, ReplacesAFileThatIsNoCompoundFile) {
  const TemporaryFolder folder(u"zolvane-storage-");
  const std::u16string path = folder.file(u"a.xls");
  CloseHandle(CreateFileW(wide(path), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
  StorageStatus status = 1;
  make_system_storage()->create(path.c_str(), status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(read_compound_file(path), MemoryStorage::Streams());
}

TEST(SystemStorage, CreatesNothingOverAFileThatAnotherHasOpen) {
  const TemporaryFolder folder(u"zolvane-storage-");
  const std::u16string path = folder.file(u"a.xls");
  const HANDLE held =
      CreateFileW(wide(path), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr);
  StorageStatus status = 0;
  EXPECT_EQ(make_system_storage()->create(path.c_str(), status), nullptr);
  EXPECT_LT(status, 0);
  CloseHandle(held);
}

TEST(SystemStorage, LetsGoOfAllItHasMade) {
  const TemporaryFolder folder(u"zolvane-storage-");
  const int before = ORLO::live_handles();
  StorageStatus status = 1;
  auto file = make_system_storage()->create(folder.file(u"a.xls").c_str(), status);
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  file->open_stream(u"Workbook", status);
  EXPECT_EQ(ORLO::live_handles(), before + 1);
  file.reset();
  EXPECT_EQ(ORLO::live_handles(), before);
}
