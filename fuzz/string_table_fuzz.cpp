// Lists of narrow and wide strings as the texts of a workbook. Each string takes three bytes: its
// kind and the scale of its length, then the length.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "export/yexcel/string_table_test_support.h"

namespace {

// Enough for several records at any place.
constexpr size_t kMostStrings = 8;

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Short ones, those that fill what a record has left, those around a whole record, and any.
size_t length_of(uint8_t kind, size_t number) {
  switch (kind % 4) {
    case 0:
      return number % 32;
    case 1:
      return number % 8300;
    case 2:
      return (kind & 4) != 0 ? 4096 + number % 32 : 8192 + number % 64;
    default:
      return number % 28000;
  }
}

void plant(YExcel::Texts& texts, const uint8_t* data, size_t size) {
  for (size_t at = 0; at + 3 <= size && at < 3 * kMostStrings; at += 3) {
    const size_t number = data[at + 1] | static_cast<size_t>(data[at + 2]) << 8;
    texts.add((data[at] & 0x80) != 0, length_of(data[at], number));
  }
}

/// For each record that a wide string goes over, the size gets ahead of the limit by a byte: from
/// the sixth on, the string's end may be too long for its record.
bool has_pieces_within_bounds(const YExcel::Texts& texts) {
  for (const YExcel::KeptString& string : texts.kept()) {
    if (string.wide && string.text.size() > 20555) return false;
  }
  return true;
}

void check_pieces(YExcel::Texts& texts, const YExcel::StringTableReader& reader) {
  const auto& begins = texts.table().continueIndices();
  demand(reader.pieces.size() == begins.size() + 1);
  size_t position = 0;
  for (size_t at = 0; at < reader.pieces.size(); ++at) {
    demand(reader.codes[at] == (at == 0 ? 252 : 60));
    demand(at == 0 || begins[at - 1] == position);
    demand(!reader.pieces[at].empty());
    demand(reader.pieces[at].size() <= 8224 || !has_pieces_within_bounds(texts));
    position += reader.pieces[at].size();
  }
  demand(position == texts.table().DataSize());
}

void check_strings(YExcel::Texts& texts, const YExcel::StringTableReader& reader) {
  demand(reader.total == texts.table().stringsTotal());
  demand(reader.unique == texts.kept().size());
  const size_t sound = YExcel::readable(texts.kept(), texts.table().continueIndices());
  demand(reader.strings.size() >= sound);
  for (size_t at = 0; at < sound; ++at)
    demand(reader.strings[at] == texts.kept()[at]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  YExcel::Texts texts;
  plant(texts, data, size);
  std::string bytes;
  demand(texts.table().Write(bytes) == bytes.size());
  const YExcel::StringTableReader reader(bytes);
  check_pieces(texts, reader);
  check_strings(texts, reader);
  return 0;
}
