// What writing promises, on both families of files.
#include "orlo/out_file.h"

#include "orlo/file_test_support.h"

namespace {

using namespace ORLO;

constexpr size_t kBlock = kFileBufferSize;

class OutFileContract : public FileFamilyTest {
 protected:
  std::unique_ptr<OutFile> open_out() { return GetParam().open_out(folder.path("out")); }
  std::string written() const { return folder.content("out"); }
};
INSTANTIATE_TEST_SUITE_P(Both, OutFileContract, ::testing::ValuesIn(kFileFamilies), family_name);

TEST_P(OutFileContract, WritesWhatItIsGiven) {
  {
    const auto file = open_out();
    EXPECT_TRUE(file->good());
    EXPECT_FALSE(file->failed());
    EXPECT_EQ(file->put('a'), 1u);
    EXPECT_EQ(file->write("b\0c\r\n\xE4", 6), 6u);
    EXPECT_EQ(file->write("none", 0), 0u);
    EXPECT_EQ(file->tell(), 7u);
  }
  EXPECT_EQ(written(), std::string("ab\0c\r\n\xE4", 7));
}

TEST_P(OutFileContract, StartsAnew) {
  folder.make("out", "what was there before");
  EXPECT_EQ(open_out()->put('x'), 1u);
  EXPECT_EQ(written(), "x");
  open_out();
  EXPECT_EQ(written(), "");
}

TEST_P(OutFileContract, WritesEveryLengthAroundItsBlocks) {
  for (const size_t length :
       {size_t{1}, kBlock - 1, kBlock, kBlock + 1, 2 * kBlock, 2 * kBlock + 1, 7 * kBlock + 33}) {
    SCOPED_TRACE(length);
    const std::string text = numbered_text(length);
    EXPECT_EQ(open_out()->write(text.data(), length), length);
    EXPECT_EQ(written(), text);
    {
      const auto file = open_out();
      for (const char c : text)
        ASSERT_EQ(file->put(c), 1u);
      EXPECT_EQ(file->tell(), length);
    }
    EXPECT_EQ(written(), text);
  }
}

TEST_P(OutFileContract, WritesPiecesOfEverySize) {
  const std::string text = numbered_text(6 * kBlock);
  {
    const auto file = open_out();
    size_t done = 0;
    for (size_t size = 1; done < text.size(); size = size * 3 % 1009) {
      const size_t piece = std::min(size, text.size() - done);
      EXPECT_EQ(file->write(text.data() + done, piece), piece);
      done += piece;
      EXPECT_EQ(file->tell(), done);
    }
  }
  EXPECT_EQ(written(), text);
}

TEST_P(OutFileContract, FlushGivesAllToTheSystem) {
  const auto file = open_out();
  file->write("abc", 3);
  EXPECT_EQ(written(), "") << "it is held back";
  EXPECT_TRUE(file->flush());
  EXPECT_EQ(written(), "abc");
  EXPECT_EQ(file->tell(), 3u);
  file->put('d');
  EXPECT_TRUE(file->flush());
  EXPECT_TRUE(file->flush()) << "nothing is left";
  EXPECT_EQ(written(), "abcd");
}

TEST_P(OutFileContract, SeekWritesOutAndGoesOnElsewhere) {
  const std::string text = numbered_text(2 * kBlock + 10);
  {
    const auto file = open_out();
    file->write(text.data(), text.size());
    file->seek(2);
    EXPECT_EQ(file->tell(), 2u);
    file->write("##", 2);
    EXPECT_EQ(file->tell(), 4u);
    file->seek(text.size() + 3);
    file->put('!');
  }
  EXPECT_EQ(written(), text.substr(0, 2) + "##" + text.substr(4) + std::string(3, '\0') + "!");
}

TEST_P(OutFileContract, WritesBothKindsOf16BitText) {
  for (const bool swapped : {false, true}) {
    SCOPED_TRACE(swapped);
    {
      const auto file = open_out();
      file->encoding = swapped ? kText16BitSwapped : kText16Bit;
      EXPECT_EQ(file->put('A'), 1u);
      EXPECT_EQ(file->write("\xE4\x80\r\n", 4), 4u);
      EXPECT_EQ(file->write("", 0), 0u);
      EXPECT_EQ(file->tell(), 10u);
    }
    EXPECT_EQ(written(), wide_bytes(u"A\u00E4\u20AC\r\n", swapped));
  }
}

TEST_P(OutFileContract, Long16BitTextComesBackTheSame) {
  const std::string text = numbered_text(3 * kBlock + 1);
  for (const int encoding : {kText16Bit, kText16BitSwapped}) {
    SCOPED_TRACE(encoding);
    {
      const auto file = open_out();
      file->encoding = encoding;
      file->write(text.data(), 121);
      file->write(text.data() + 121, text.size() - 121);
    }
    const auto file = GetParam().open_in(folder.path("out"), 0);
    file->encoding = encoding;
    std::string back(text.size(), '\0');
    EXPECT_EQ(file->read(back.data(), back.size()), back.size());
    EXPECT_EQ(back, text);
    EXPECT_EQ(file->peek(), -1);
  }
}

TEST_P(OutFileContract, AFileThatCannotBeOpenedRefusesAllWithCode87) {
  set_last_error(0);
  const auto file = GetParam().open_out(folder.path("none") + "/x");
  EXPECT_EQ(last_error(), 87u);
  EXPECT_TRUE(file->failed());
  EXPECT_FALSE(file->good());
  EXPECT_EQ(file->put('a'), 0u);
  EXPECT_EQ(file->write("abc", 3), 0u);
  EXPECT_FALSE(file->flush());
  file->seek(5);
  EXPECT_EQ(file->tell(), 0u);
  file->encoding = kText16Bit;
  EXPECT_EQ(file->write("abc", 3), 0u);
}

TEST_P(OutFileContract, AFolderCannotBeWritten) {
  set_last_error(0);
  const auto file = GetParam().open_out(folder.path(""));
  EXPECT_EQ(last_error(), 87u);
  EXPECT_TRUE(file->failed());
}

TEST_P(OutFileContract, AfterAFailedWriteLaterOnesAreRefused) {
  for (const uint64_t refuses_from : {uint64_t{0}, uint64_t{kBlock}, uint64_t{3 * kBlock}}) {
    SCOPED_TRACE(refuses_from);
    MemoryFile memory{.refuses_from = refuses_from, .error = 5};
    const std::string text = numbered_text(10 * kBlock);
    {
      const auto file = GetParam().out_over(memory);
      const size_t taken = file->write(text.data(), text.size());
      EXPECT_LT(taken, text.size());
      EXPECT_GE(taken, refuses_from);
      EXPECT_TRUE(file->failed());
      EXPECT_FALSE(file->good());
      EXPECT_EQ(file->put('a'), 0u);
      EXPECT_EQ(file->write("abc", 3), 0u);
      EXPECT_FALSE(file->flush());
      file->seek(0);
      EXPECT_EQ(file->put('a'), 0u) << "for good";
    }
    EXPECT_EQ(memory.content, text.substr(0, static_cast<size_t>(refuses_from)));
  }
}

TEST_P(OutFileContract, AFullDiskIsAFailure) {
  MemoryFile memory{.disk_size = kBlock + 10};
  const std::string text = numbered_text(2 * kBlock);
  const auto file = GetParam().out_over(memory);
  EXPECT_EQ(file->write(text.data(), text.size()), text.size()) << "both blocks are still held";
  EXPECT_FALSE(file->flush());
  EXPECT_TRUE(file->failed());
  EXPECT_EQ(memory.content, text.substr(0, kBlock + 10));
}

TEST_P(OutFileContract, ARefused16BitTextTellsWhatWasTaken) {
  MemoryFile memory{.refuses_from = 0, .error = 5};
  const auto file = GetParam().out_over(memory);
  file->encoding = kText16Bit;
  const std::string text = numbered_text(5 * kBlock);
  const size_t taken = file->write(text.data(), text.size());
  EXPECT_GE(taken, kBlock / 2);
  EXPECT_LT(taken, text.size());
}

TEST_P(OutFileContract, FullBlocksGoOutAsTheyFill) {
  MemoryFile memory;
  const std::string text = numbered_text(2 * kBlock + 1);
  const auto file = GetParam().out_over(memory);
  file->write(text.data(), kBlock);
  EXPECT_TRUE(memory.log.empty());
  file->put(text[kBlock]);
  EXPECT_EQ(memory.log, std::vector<std::string>({"write 0+4096"}));
  file->write(text.data() + kBlock + 1, kBlock);
  EXPECT_EQ(memory.log, std::vector<std::string>({"write 0+4096", "write 4096+4096"}));
  file->flush();
  EXPECT_EQ(memory.log.back(), "write 8192+1");
  EXPECT_EQ(memory.content, text);
}

/// Keeps the block of a write and looks at it only when the end is waited for.
class SlowFile final : public OverlappedRawFile {
 public:
  explicit SlowFile(std::vector<std::string>& log) : log_(log) {}
  uint32_t start_read(uint64_t, char*, size_t) override { return 1; }
  uint32_t start_write(uint64_t offset, const char* block, size_t size) override {
    log_.push_back("start " + std::to_string(offset));
    block_ = block;
    size_ = size;
    return 0;
  }
  Transfer wait() override {
    log_.push_back("end " + std::string(block_, 3));
    return {std::exchange(size_, 0), 0};
  }
  void cancel() noexcept override { size_ = 0; }

 private:
  std::vector<std::string>& log_;
  const char* block_ = nullptr;
  size_t size_ = 0;
};

TEST(OverlappedOutFile, GoesOnInTheOtherBufferWhileTheFormerIsWritten) {
  std::vector<std::string> log;
  {
    OverlappedOutFile file(std::make_unique<SlowFile>(log));
    for (const char* piece : {"aaa", "bbb", "ccc"}) {
      for (size_t i = 0; i < kBlock; ++i)
        file.put(piece[0]);
    }
    EXPECT_EQ(log, std::vector<std::string>({"start 0", "end aaa", "start 4096"}));
  }
  EXPECT_EQ(log, std::vector<std::string>(
                     {"start 0", "end aaa", "start 4096", "end bbb", "start 8192", "end ccc"}));
}

}  // namespace
