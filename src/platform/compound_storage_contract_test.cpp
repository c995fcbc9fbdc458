// What CompoundStorage promises, tested on the storage in memory here and on the system's own in
// compound_storage_contract_win_test.cpp.
#include "platform/compound_storage_test_support.h"

namespace {

using Streams = MemoryStorage::Streams;

class MemoryStorageBed final : public StorageBed {
 public:
  MemoryStorageBed() { storage_.refuse(path_without_folder()); }

  CompoundStorage& storage() override { return storage_; }
  std::u16string path(const std::u16string& name) override { return u"C:\\" + name; }
  std::u16string path_without_folder() override { return u"C:\\none\\book.xls"; }
  std::optional<Streams> read(const std::u16string& path) override {
    const Streams* const streams = storage_.file(path);
    return streams == nullptr ? std::nullopt : std::optional(*streams);
  }

 private:
  MemoryStorage storage_;
};

/// Some bytes, zeros among them.
std::string bytes(size_t count) {
  std::string made(count, '\0');
  for (size_t i = 0; i < count; ++i)
    made[i] = static_cast<char>(i * 7 % 251);
  return made;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, StorageContract,
                         ::testing::Values(StorageBedMaker{
                             "Own", [] { return std::make_unique<MemoryStorageBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(StorageContract, KeepsExactlyTheOneStreamThatWasMade) {
  auto file = create();
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(status(), 0);
  EXPECT_EQ(file->create_stream(u"Workbook"), 0);
  auto stream = open(*file, u"Workbook");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(status(), 0);
  EXPECT_EQ(stream->write("abc", 3), 0);
  stream.reset();
  EXPECT_EQ(file->commit(), 0);
  file.reset();
  EXPECT_EQ(read(), (Streams{{u"Workbook", "abc"}}));
}

TEST_P(StorageContract, KeepsEachByteOfStreamsOfAllSizes) {
  for (const unsigned size :
       {0U, 1U, 63U, 64U, 511U, 512U, 4095U, 4096U, 4097U, 100000U, 9000000U}) {
    SCOPED_TRACE(size);
    const std::string all = bytes(size);
    auto file = create();
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->create_stream(u"Workbook"), 0);
    EXPECT_EQ(open(*file, u"Workbook")->write(all.data(), all.size()), 0);
    file.reset();
    const auto streams = read();
    ASSERT_TRUE(streams);
    ASSERT_EQ(streams->size(), 1u);
    EXPECT_TRUE(streams->begin()->second == all);
  }
}

TEST_P(StorageContract, WritesFromWhereTheLastWriteEnded) {
  auto file = create();
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  auto stream = open(*file, u"Workbook");
  EXPECT_EQ(stream->write("abc", 3), 0);
  EXPECT_EQ(stream->write("", 0), 0);
  EXPECT_EQ(stream->write("de", 2), 0);
  stream.reset();
  EXPECT_EQ(open(*file, u"Workbook")->write("A", 1), 0);  // from the start of the stream anew
  file.reset();
  EXPECT_EQ(read(), (Streams{{u"Workbook", "Abcde"}}));
}

TEST_P(StorageContract, ReplacesAFileThatIsThere) {
  auto file = create();
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  file->create_stream(u"Another");
  const std::string much = bytes(50000);
  EXPECT_EQ(open(*file, u"Workbook")->write(much.data(), much.size()), 0);
  file.reset();
  file = create();
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  EXPECT_EQ(open(*file, u"Workbook")->write("new", 3), 0);
  file.reset();
  EXPECT_EQ(read(), (Streams{{u"Workbook", "new"}}));
}

TEST_P(StorageContract, KeepsFilesApart) {
  for (const auto* name : {u"a.xls", u"b.xls"}) {
    auto file = create(name);
    ASSERT_NE(file, nullptr);
    file->create_stream(name);
  }
  EXPECT_EQ(read(u"a.xls"), (Streams{{u"a.xls", ""}}));
  EXPECT_EQ(read(u"b.xls"), (Streams{{u"b.xls", ""}}));
}

TEST_P(StorageContract, CreatesNoFileWithoutAFolderForIt) {
  StorageStatus status = 0;
  const auto path = bed().path_without_folder();
  EXPECT_EQ(bed().storage().create(path.c_str(), status), nullptr);
  EXPECT_LT(status, 0);
  EXPECT_FALSE(bed().read(path));
}

TEST_P(StorageContract, CreatesNoFileWithoutAName) {
  StorageStatus status = 0;
  EXPECT_EQ(bed().storage().create(u"", status), nullptr);
  EXPECT_LT(status, 0);
}

TEST_P(StorageContract, HasAnOpenFileToItself) {
  const auto file = create();
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(create(), nullptr);
  EXPECT_LT(status(), 0);
  EXPECT_EQ(file->create_stream(u"Workbook"), 0);
}

TEST_P(StorageContract, CanCreateAFileAgainThatWasLetGo) {
  create().reset();
  EXPECT_NE(create(), nullptr);
  EXPECT_EQ(status(), 0);
}

TEST_P(StorageContract, OpensNoStreamThatIsNotThere) {
  const auto file = create();
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  EXPECT_EQ(open(*file, u"Other"), nullptr);
  EXPECT_LT(status(), 0);
}

TEST_P(StorageContract, OpensAStreamOnceAtATime) {
  const auto file = create();
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  auto stream = open(*file, u"Workbook");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(open(*file, u"Workbook"), nullptr);
  EXPECT_LT(status(), 0);
  stream.reset();
  EXPECT_NE(open(*file, u"Workbook"), nullptr);
  EXPECT_EQ(status(), 0);
}

TEST_P(StorageContract, EmptiesAStreamThatIsMadeAgain) {
  auto file = create();
  ASSERT_NE(file, nullptr);
  file->create_stream(u"Workbook");
  EXPECT_EQ(open(*file, u"Workbook")->write("abc", 3), 0);
  EXPECT_EQ(file->create_stream(u"Workbook"), 0);
  file.reset();
  EXPECT_EQ(read(), (Streams{{u"Workbook", ""}}));
}
