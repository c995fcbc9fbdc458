// String beside std::string; dates and wildcards for their figures.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "orlo/datetime.h"
#include "orlo/rstring.h"
#include "orlo/wildcard.h"

namespace {

constexpr char kText[] = "C:\\Program Files\\Vendor\\Program\\uninstall.exe /S";

template <typename Text>
void BM_Copy(benchmark::State& state) {
  const Text original(kText);
  for (auto _ : state) {
    Text copy(original);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK_TEMPLATE(BM_Copy, String);
BENCHMARK_TEMPLATE(BM_Copy, std::string);

template <typename Text>
void BM_Append(benchmark::State& state) {
  for (auto _ : state) {
    Text text;
    for (int i = 0; i < 1000; ++i)
      text.append("sixteen letters.");
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK_TEMPLATE(BM_Append, String);
BENCHMARK_TEMPLATE(BM_Append, std::string);

void BM_ParseDates(benchmark::State& state) {
  const std::vector<const char*> texts = {"20090105",
                                          "05.01.2009",
                                          "12/25/2009",
                                          "2009-01-05 10:11:12",
                                          "Jan 5 2009",
                                          "Mon, 05 Jan 2009 12:34:56 +0100",
                                          "2009-01-05T10:11:12+01:00",
                                          "soon"};
  for (auto _ : state) {
    for (const char* text : texts) {
      DateTime date;
      date.parse(text);
      benchmark::DoNotOptimize(date);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(texts.size()));
}
BENCHMARK(BM_ParseDates);

void BM_WildcardSearch(benchmark::State& state) {
  const String text(kText);
  const String pattern("*uninst*");
  for (auto _ : state)
    benchmark::DoNotOptimize(ORLO::match_wildcard_nocase(text, pattern));
}
BENCHMARK(BM_WildcardSearch);

/// The same question to std::string, whose find needs no pattern.
void BM_FindInFoldedText(benchmark::State& state) {
  const std::string text(kText);
  for (auto _ : state) {
    std::string folded(text);
    for (char& c : folded)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    benchmark::DoNotOptimize(folded.find("uninst") != std::string::npos);
  }
}
BENCHMARK(BM_FindInFoldedText);

}  // namespace
