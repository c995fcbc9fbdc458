// Timing of several candidates over fixed data: interleaved runs, medians, ratios.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

struct Candidate {
  std::string name;
  std::function<void()> run;
  std::function<void()> prepare = nullptr;  ///< before each run, not timed; may be null
};

inline constexpr int kRuns = 9;

/// Median milliseconds of each candidate, run in turns so that the machine's moods hit all alike.
inline std::vector<double> interleaved_medians(const std::vector<Candidate>& candidates) {
  std::vector<std::vector<double>> times(candidates.size());
  for (int round = 0; round < kRuns; ++round) {
    for (size_t i = 0; i < candidates.size(); ++i) {
      if (candidates[i].prepare) candidates[i].prepare();
      const auto start = std::chrono::steady_clock::now();
      candidates[i].run();
      const std::chrono::duration<double, std::milli> took =
          std::chrono::steady_clock::now() - start;
      times[i].push_back(took.count());
    }
  }
  std::vector<double> medians;
  for (auto& list : times) {
    std::sort(list.begin(), list.end());
    medians.push_back(list[list.size() / 2]);
  }
  return medians;
}

/// Prints the medians and the ratio of the first candidate to each of the others.
inline void print_ratios(const char* title, const std::vector<Candidate>& candidates) {
  const std::vector<double> medians = interleaved_medians(candidates);
  std::printf("%s (median of %d interleaved runs)\n", title, kRuns);
  for (size_t i = 0; i < candidates.size(); ++i) {
    std::printf("  %-36s %10.3f ms", candidates[i].name.c_str(), medians[i]);
    if (i != 0) std::printf("   ratio %.2f", medians[0] / medians[i]);
    std::printf("\n");
  }
  std::fflush(stdout);
}
