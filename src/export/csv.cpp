#include "export/csv.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "orlo/exception.h"
#include "orlo/overlapped_file.h"

namespace {

/// The file takes long pieces at less cost than short ones.
constexpr size_t kHeldBack = 32768;
constexpr size_t kWord = sizeof(uint64_t);
/// The quotes and the semicolon.
constexpr size_t kAroundField = 3;
/// Texts lie all over the memory: those of a row are fetched so many rows before its turn.
constexpr size_t kRowsAhead = 4;
constexpr uint64_t kEachByte = 0x0101010101010101;

constexpr bool has_semicolon(uint64_t word) noexcept {
  const uint64_t zero_where_it_is = word ^ (';' * kEachByte);
  return ((zero_where_it_is - kEachByte) & ~zero_where_it_is & (0x80 * kEachByte)) != 0;
}

void prefetch(const std::vector<String>& row) {
  for (const String& text : row)
    __builtin_prefetch(text.c_str());
}

class Lines {
 public:
  explicit Lines(ORLO::OutFile& file) : file_(file), bytes_(2 * kHeldBack) {}

  /// A line of these fields.
  template <typename Fields, typename TextOfField>
  void append(const Fields& fields, const TextOfField& text_of) {
    size_t needed = length_ + 1;
    for (const auto& field : fields)
      needed += text_of(field).length() + kAroundField;
    if (bytes_.size() < needed) bytes_.resize(2 * needed);
    char* out = bytes_.data() + length_;
    for (const auto& field : fields)
      out = put_field(out, text_of(field));
    *out++ = '\n';
    length_ = static_cast<size_t>(out - bytes_.data());
    if (length_ >= kHeldBack) hand_over();
  }
  void hand_over() {
    file_.write(bytes_.data(), length_);
    length_ = 0;
  }

 private:
  static char* put_field(char* out, const String& field) {
    char* const end = put_unended(out, field.c_str(), field.length());
    *end = ';';
    return end + 1;
  }
  /// Most fields are short and need no quotes: one look at each byte is enough for both.
  static char* put_unended(char* out, const char* text, size_t length) {
    uint64_t word = 0;
    bool quoted = false;
    size_t done = 0;
    for (; length - done >= kWord; done += kWord) {
      std::memcpy(&word, text + done, kWord);
      std::memcpy(out + done, &word, kWord);
      quoted = quoted || has_semicolon(word);
    }
    for (; done < length; ++done) {
      out[done] = text[done];
      quoted = quoted || text[done] == ';';
    }
    return quoted ? put_quoted(out, text, length) : out + length;
  }
  static char* put_quoted(char* out, const char* text, size_t length) {
    *out++ = '"';
    std::memcpy(out, text, length);
    out += length;
    *out++ = '"';
    return out;
  }

  ORLO::OutFile& file_;
  std::vector<char> bytes_;
  size_t length_ = 0;
};

}  // namespace

void write_csv(const ExportSheet& sheet, ORLO::OutFile& file) {
  Lines lines(file);
  lines.append(sheet.columns,
               [](const ExportColumn& column) -> const String& { return column.title; });
  for (size_t row = 0; row < sheet.rows.size(); ++row) {
    prefetch(sheet.rows[std::min(row + kRowsAhead, sheet.rows.size() - 1)]);
    lines.append(sheet.rows[row], [](const String& field) -> const String& { return field; });
  }
  lines.hand_over();
}

void writeCsv(const ExportSheet& sheet, const String& fileName) {
  const ORLO::ExceptionContext context("writing file", fileName);
  auto opened = ORLO::open_overlapped_raw_file(fileName.c_str(), ORLO::FileAccess::write,
                                               ORLO::kCreateAlways, ORLO::kShareRead, 0);
  if (opened == nullptr) throw ORLO::LWE();
  ORLO::OverlappedOutFile file(std::move(opened));
  write_csv(sheet, file);
  if (!file.flush()) throw ORLO::LWE(file.error());
}
