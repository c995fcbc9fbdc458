// The difference of two inventories beside std::set_difference over the same rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "inventory/package_schema.h"

namespace {

using Texts = std::vector<std::string>;
using PlainTable = std::map<Texts, Texts>;

constexpr int kRows = 100'000;

/// Row `i` of an inventory; `changed` gives it another version.
Texts texts_of(int i, bool changed) {
  Texts texts(kPackageColumns);
  const std::string number = std::to_string(i * 7919 % 1'000'003);
  texts[0] = texts[33] = "{" + number + "-4A1B-11D2-9C00-00C04F79AA}";
  texts[1] = "HKLM Uninstall";
  texts[2] = "Some Program " + number;
  texts[3] = changed ? "9.9" : "1." + number;
  texts[7] = "C:\\Program Files\\Vendor\\Program " + number;
  texts[8] = "12/01/2024 10:1" + std::to_string(i % 10);
  texts[9] = "31.12.2099";
  texts[10] = "MsiExec.exe /X{" + number + "-4A1B-11D2-9C00-00C04F79AA}";
  for (const size_t flag : {12u, 13u, 14u, 25u})
    texts[flag] = "0";
  texts[16] = number;
  texts[21] = "C:\\windows\\system32\\msiexec.exe";
  texts[23] = texts[24] = "1";
  texts[27] = "Some Vendor";
  texts[34] = "-2147483646";
  return texts;
}

using AllTexts = std::vector<Texts>;

/// Made once and kept, so that filling either table allocates nothing but the table.
const AllTexts& all_texts(bool second) {
  const auto make = [](bool changed) {
    AllTexts all;
    for (int i = 0; i < kRows; ++i)
      all.push_back(texts_of(i, changed && i % 100 == 0));
    return all;
  };
  static const AllTexts first_texts = make(false);
  static const AllTexts second_texts = make(true);
  return second ? second_texts : first_texts;
}

/// As a source fills it: one row buffer for all.
void fill(Table& table, bool second) {
  Row row = make_package_row();
  for (const Texts& texts : all_texts(second)) {
    for (size_t c = 0; c < texts.size(); ++c)
      row.cells[c].text = String(texts[c]);
    table.addRow(row);
  }
}

PlainTable plain(bool second) {
  PlainTable table;
  for (const Texts& texts : all_texts(second)) {
    table.emplace(Texts{texts[34], texts[33]}, texts);
  }
  return table;
}

/// As a refresh finds them: the second table is the copy that the last cycle left, the first has
/// been read anew, each row into new texts.
void BM_Difference(benchmark::State& state) {
  Table first(packageSchema());
  Table second(packageSchema());
  fill(first, true);
  second.assign(first);
  fill(first, false);
  for (auto _ : state) {
    const Table difference(first, second);
    if (difference.size() != kRows / 100) state.SkipWithError("wrong difference");
  }
}
BENCHMARK(BM_Difference)->Unit(benchmark::kMillisecond);

/// Two tables that have nothing to do with each other, as after the history file was read.
void BM_DifferenceUnrelated(benchmark::State& state) {
  Table first(packageSchema());
  Table second(packageSchema());
  fill(first, false);
  fill(second, true);
  for (auto _ : state) {
    const Table difference(first, second);
    if (difference.size() != kRows / 100) state.SkipWithError("wrong difference");
  }
}
BENCHMARK(BM_DifferenceUnrelated)->Unit(benchmark::kMillisecond);

/// Reading all rows anew into a table that has them: what the sharing costs the reader.
void BM_AddKnownRows(benchmark::State& state) {
  Table table(packageSchema());
  fill(table, true);
  for (auto _ : state)
    fill(table, false);
}
BENCHMARK(BM_AddKnownRows)->Unit(benchmark::kMillisecond);

void BM_DifferenceFloor(benchmark::State& state) {
  const PlainTable first = plain(false);
  const PlainTable second = plain(true);
  for (auto _ : state) {
    PlainTable difference;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(),
                        std::inserter(difference, difference.end()));
    if (difference.size() != kRows / 100) state.SkipWithError("wrong difference");
  }
}
BENCHMARK(BM_DifferenceFloor)->Unit(benchmark::kMillisecond);

}  // namespace
