#include "platform/memory_storage.h"

#include <gtest/gtest.h>

namespace {

using Operation = MemoryStorage::Operation;
using Streams = MemoryStorage::Streams;

constexpr StorageStatus kFailure = -7;

class MemoryStorageTest : public ::testing::Test {
 protected:
  std::unique_ptr<CompoundFile> create() { return storage.create(u"a.xls", status); }

  MemoryStorage storage;
  StorageStatus status = 1;
};

TEST_F(MemoryStorageTest, LogsAllCallsAndWhatIsLetGo) {
  auto file = create();
  file->create_stream(u"S");
  file->open_stream(u"S", status)->write("abc", 3);
  file->open_stream(u"T", status);
  EXPECT_EQ(file->commit(), 0);
  file.reset();
  EXPECT_EQ(storage.calls(),
            (std::vector<std::string>{"create a.xls", "create stream S", "open stream S", "write 3",
                                      "close stream S", "open stream T", "commit", "close a.xls"}));
}

TEST_F(MemoryStorageTest, ShowsAFileOnlyOnceItHasBeenLetGo) {
  EXPECT_EQ(storage.file(u"a.xls"), nullptr);
  auto file = create();
  EXPECT_EQ(storage.file(u"a.xls"), nullptr);
  file.reset();
  ASSERT_NE(storage.file(u"A.XLS"), nullptr);
  EXPECT_EQ(*storage.file(u"A.XLS"), Streams());
}

TEST_F(MemoryStorageTest, CreatesNothingWhereItRefuses) {
  storage.refuse(u"A.xls");
  EXPECT_EQ(create(), nullptr);
  EXPECT_LT(status, 0);
  EXPECT_EQ(storage.file(u"a.xls"), nullptr);
  EXPECT_NE(storage.create(u"b.xls", status), nullptr);
}

TEST_F(MemoryStorageTest, FailsToCreateAsItIsTold) {
  create().reset();
  storage.fail(Operation::create, kFailure);
  EXPECT_EQ(create(), nullptr);
  EXPECT_EQ(status, kFailure);
  EXPECT_NE(storage.file(u"a.xls"), nullptr);  // what was there stays
}

TEST_F(MemoryStorageTest, FailsToCommitAsItIsTold) {
  storage.fail(Operation::commit, kFailure);
  EXPECT_EQ(create()->commit(), kFailure);
}

TEST_F(MemoryStorageTest, FailsToCreateAStreamAsItIsTold) {
  storage.fail(Operation::create_stream, kFailure);
  auto file = create();
  EXPECT_EQ(file->create_stream(u"S"), kFailure);
  EXPECT_EQ(file->open_stream(u"S", status), nullptr);
  file.reset();
  EXPECT_EQ(*storage.file(u"a.xls"), Streams());
}

TEST_F(MemoryStorageTest, FailsToOpenAStreamAsItIsTold) {
  storage.fail(Operation::open_stream, kFailure);
  const auto file = create();
  EXPECT_EQ(file->create_stream(u"S"), 0);
  EXPECT_EQ(file->open_stream(u"S", status), nullptr);
  EXPECT_EQ(status, kFailure);
}

TEST_F(MemoryStorageTest, FailsToWriteAsItIsTold) {
  storage.fail(Operation::write, kFailure);
  auto file = create();
  file->create_stream(u"S");
  EXPECT_EQ(file->open_stream(u"S", status)->write("abc", 3), kFailure);
  file.reset();
  EXPECT_EQ(*storage.file(u"a.xls"), (Streams{{u"S", ""}}));
}

TEST_F(MemoryStorageTest, TakesFewerBytesWhereItIsFull) {
  storage.take_at_most(2);
  auto file = create();
  file->create_stream(u"S");
  EXPECT_EQ(file->open_stream(u"S", status)->write("ab", 2), 0);
  EXPECT_LT(file->open_stream(u"S", status)->write("xyz", 3), 0);
  file.reset();
  EXPECT_EQ(*storage.file(u"a.xls"), (Streams{{u"S", "xy"}}));
}

TEST_F(MemoryStorageTest, FailsWithThePlatformsCodes) {
  const auto code = [](uint32_t bits) { return static_cast<StorageStatus>(bits); };
  storage.create(u"", status);
  EXPECT_EQ(status, code(0x80030003));  // path not found
  const auto file = create();
  create();
  EXPECT_EQ(status, code(0x80030020));  // share violation
  file->open_stream(u"S", status);
  EXPECT_EQ(status, code(0x80030002));  // file not found
  file->create_stream(u"S");
  const auto stream = file->open_stream(u"S", status);
  file->open_stream(u"S", status);
  EXPECT_EQ(status, code(0x80030005));  // access denied
  EXPECT_EQ(file->create_stream(u"S"), code(0x80030005));
  storage.take_at_most(1);
  EXPECT_EQ(stream->write("ab", 2), code(0x80030070));  // medium full
}

}  // namespace
