// A text file behind two bytes: its encoding with the family of file classes, and the size of the
// pieces that it is read in. Lines are what a plain splitting gives, both with and without a limit,
// and words and numbers stay in their room and get on.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orlo/overlapped_file.h"
#include "orlo/read_line.h"
#include "orlo/read_number.h"
#include "orlo/sync_file.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

class Content final : public ORLO::RawFile {
 public:
  Content(const std::string& bytes, size_t piece) : bytes_(bytes), piece_(piece) {}
  ORLO::Transfer read(uint64_t offset, char* block, size_t size) override {
    if (offset >= bytes_.size()) return {};
    const auto from = static_cast<size_t>(offset);
    const size_t count = std::min({size, piece_, bytes_.size() - from});
    std::memcpy(block, bytes_.data() + from, count);
    return {count, 0};
  }
  ORLO::Transfer write(uint64_t, const char*, size_t) override { return {}; }

 private:
  const std::string& bytes_;
  const size_t piece_;
};

struct Input {
  std::string bytes;
  size_t piece;
  int encoding;
  bool overlapped;

  std::unique_ptr<ORLO::InFile> open() const {
    auto raw = std::make_unique<Content>(bytes, piece);
    std::unique_ptr<ORLO::InFile> file;
    if (overlapped) {
      file = std::make_unique<ORLO::OverlappedInFile>(ORLO::transfer_at_once(std::move(raw)));
    } else {
      file = std::make_unique<ORLO::SyncInFile>(std::move(raw));
    }
    file->encoding = encoding;
    return file;
  }
};

std::string characters(const Input& input) {
  std::string text;
  const auto file = input.open();
  for (int c = file->get(); c != -1; c = file->get())
    text += static_cast<char>(c);
  demand(file->eof());
  return text;
}

using Lines = std::vector<std::string>;

Lines split(const std::string& text, size_t max) {
  Lines lines;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    const size_t stop = std::min(end, at + max);
    lines.push_back(text.substr(at, stop - at));
    at = stop;
    if (at == end) at += text.compare(at, 2, "\r\n") == 0 ? size_t{2} : size_t{1};
  }
  return lines;
}

Lines read(const Input& input, size_t max) {
  Lines lines;
  const auto file = input.open();
  ORLO::LineBuffer line(max % 5);
  for (ptrdiff_t count = 0; (count = ORLO::read_line(*file, line, max)) != -1;)
    lines.emplace_back(line.data(), static_cast<size_t>(count));
  return lines;
}

void check_words_and_numbers(const Input& input) {
  const auto file = input.open();
  for (uint64_t before = 0; file->good(); before = file->tell()) {
    char number[ORLO::kIntTextRoom];
    char real[ORLO::kFloatTextRoom];
    char word[7];
    int32_t value = 0;
    ORLO::read_number(*file, value);
    const int base = file->read_int_text(number);
    demand(base == 0 || base == 8 || base == 10 || base == 16);
    demand(file->read_float_text(real) == std::strlen(real));
    demand(file->read_word(word, sizeof word) < sizeof word);
    file->peek_at(-3);
    file->peek_at(9);
    if (file->tell() == before) file->skip();
    demand(file->tell() > before || file->eof());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  constexpr int kEncodings[] = {ORLO::kText8Bit, ORLO::kText16Bit, ORLO::kText16BitSwapped};
  const Input input{std::string(data + 2, data + size), data[1] + size_t{1},
                    kEncodings[data[0] / 2 % 3], data[0] % 2 != 0};
  const std::string text = characters(input);
  for (const size_t max : {size_t{1}, size_t{4}, size_t{1} << 30})
    demand(read(input, max) == split(text, max));
  check_words_and_numbers(input);
  return 0;
}
