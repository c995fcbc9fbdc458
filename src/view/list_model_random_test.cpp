// The list model beside a plain one that takes every step literally, through runs of random steps
// over packages whose texts are as bad as the registry can have them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "view/entry_test_support.h"
#include "view/list_model.h"
#include "view/recording_list_test_support.h"

namespace {

using Entry = UninstallEntry;
using Ids = std::vector<uint32_t>;

class PlainModel {
 public:
  void apply(const Entry& entry) {
    for (auto& [id, known] : entries_) {
      if (!known.same_package(entry)) continue;
      const Entry old = known;
      known.merge(entry);
      if (sort_.order(old, known) != 0) displaced_.insert(id);
      return;
    }
    const uint32_t id = ++next_id_;
    entries_[id] = entry;
    if (!acceptRow(entry, flags_, search_)) return;
    const auto greater = std::find_if(shown_.begin(), shown_.end(), [&](uint32_t other) {
      return !displaced_.contains(other) && sort_.order(entry, entries_[other]) < 0;
    });
    shown_.insert(greater, id);
  }

  void remove(const String& name, int32_t root) {
    const auto gone = std::find_if(entries_.begin(), entries_.end(), [&](const auto& item) {
      return item.second.HKEY_ROOT == root && compare_bytes(item.second.name, name) == 0;
    });
    if (gone == entries_.end()) return;
    std::erase(shown_, gone->first);
    entries_.erase(gone);
  }

  void clear_marks() {
    for (auto& [id, entry] : entries_) {
      const Entry old = entry;
      entry.changed = 0;
      if (sort_.order(old, entry) != 0) displaced_.insert(id);
    }
  }

  void clear() {
    entries_.clear();
    shown_.clear();
  }

  void rebuild() {
    shown_.clear();
    for (const auto& [id, entry] : entries_) {
      if (acceptRow(entry, flags_, search_)) shown_.push_back(id);
    }
    sort_shown();
  }

  void select_type(int index) {
    flags_.select_type(index);
    rebuild();
  }
  void toggle_microsoft(bool shown) {
    flags_.showMicrosoft = shown;
    rebuild();
  }
  void search(const String& text) {
    search_ = Search(text);
    rebuild();
  }
  void sort_by(int column) {
    sort_.choose(column);
    sort_shown();
  }

  const Ids& shown() const { return shown_; }
  const std::map<uint32_t, Entry>& entries() const { return entries_; }

 private:
  void sort_shown() {
    displaced_.clear();
    std::stable_sort(shown_.begin(), shown_.end(), [&](uint32_t a, uint32_t b) {
      return sort_.order(entries_[a], entries_[b]) < 0;
    });
  }

  ShowFlags flags_;
  Search search_;
  SortState sort_;
  std::map<uint32_t, Entry> entries_;
  uint32_t next_id_ = 0;
  Ids shown_;
  std::set<uint32_t> displaced_;
};

const std::vector<String>& bad_texts() {
  static const std::vector<String> texts = [] {
    static constexpr char kWithNul[] = "a\0b";
    std::vector<String> made = {"",
                                "a",
                                "A",
                                "{a}",
                                "{}",
                                "{",
                                "*",
                                "?*[]",
                                "%s%n",
                                "\xff\xfe",
                                "\t\r\n",
                                "KB1",
                                "a}.KB2",
                                "\x01",
                                "-",
                                "Microsoft",
                                "Windows ",
                                "9.10",
                                "9.9",
                                "\\\\a",
                                "4294967296.-1",
                                "OperatingSystem"};
    made.emplace_back(kWithNul, kWithNul + 3);
    made.emplace_back(std::string(255, '{').c_str());
    made.emplace_back(std::string(255, 'z').c_str());
    made.emplace_back(std::string(1 << 14, '(').c_str());
    return made;
  }();
  return texts;
}

constexpr const char* kDates[] = {"",           "20240229", "20230229",    "31/31/2013",
                                  "01.02.2003", "00000000", "31.12.30828", "no date"};
constexpr String Entry::*kTexts[] = {
    &Entry::source,     &Entry::displayName,  &Entry::displayVersion, &Entry::parent,
    &Entry::parentName, &Entry::uninstallCmd, &Entry::displayIcon,    &Entry::comments,
    &Entry::publisher,  &Entry::updateURL};
constexpr int32_t Entry::*kNumbers[] = {&Entry::size, &Entry::OK, &Entry::systemComponent,
                                        &Entry::frequency, &Entry::changed};
constexpr int32_t kExtremes[] = {0, -1, 1, -2147483647 - 1, 2147483647};
constexpr int32_t kRoots[] = {0, kTestLocalMachine, kTestCurrentUser};

/// One run: a seed decides about all of it.
class RandomRun {
 public:
  explicit RandomRun(unsigned seed) : dice_(seed) {}

  void step() {
    switch (choose(16)) {
      case 0:
        return remove();
      case 1: {
        const auto index = static_cast<int>(choose(5));
        model_.selectType(index);
        return plain_.select_type(index);
      }
      case 2: {
        const bool shown = choose(3) != 0;
        model_.toggleMicrosoft(shown);
        return plain_.toggle_microsoft(shown);
      }
      case 3: {
        // Mostly none, or there would be few rows.
        const String text = choose(2) == 0 ? text_of() : String();
        model_.searchChanged(text);
        return plain_.search(text);
      }
      case 4:
      case 5: {
        const auto column = static_cast<int>(choose(comparatorCount));
        model_.sortByColumn(column);
        return plain_.sort_by(column);
      }
      case 6:
        model_.clear_marks();
        return plain_.clear_marks();
      case 7:
        if (choose(8) != 0) return apply();
        model_.clear();
        return plain_.clear();
      case 8: {
        model_.begin_batch();
        const size_t changes = choose(8);
        for (size_t i = 0; i < changes; ++i)
          choose(3) == 0 ? remove() : apply();
        return model_.end_batch();
      }
      default:
        return apply();
    }
  }

  void expect_alike() {
    ASSERT_EQ(list_.ids(), plain_.shown());
    ASSERT_EQ(model_.size(), plain_.entries().size());
    for (const auto& [id, entry] : plain_.entries()) {
      ASSERT_NE(model_.find(id), nullptr);
      ASSERT_EQ(compare_bytes(model_.find(id)->source, entry.source), 0);
    }
    for (int column = -1; column <= kListColumns; ++column)
      model_.cellText(static_cast<uint32_t>(choose(40)), column);
  }

 private:
  size_t choose(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(dice_); }
  template <typename Values>
  const auto& one_of(const Values& values) {
    return values[choose(std::size(values))];
  }
  String text_of() { return one_of(bad_texts()); }
  String name_of() { return String::formatted("name %d", static_cast<int>(choose(24))); }

  void apply() {
    Entry entry = make_entry("", one_of(kDates), one_of(kRoots));
    entry.name = entry.keyName = name_of();
    if (choose(4) == 0) entry.name = name_of();
    for (String Entry::*const field : kTexts)
      entry.*field = choose(3) == 0 ? String() : text_of();
    for (int32_t Entry::*const field : kNumbers)
      entry.*field = one_of(kExtremes);
    if (choose(2) == 0) entry.systemComponent = 0;
    model_.applyEntry(entry);
    plain_.apply(entry);
  }

  void remove() {
    const String name = name_of();
    const int32_t root = one_of(kRoots);
    model_.removeEntry(RowKey{{String::formatted("%d", root), name}});
    plain_.remove(name, root);
  }

  std::mt19937 dice_;
  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
  PlainModel plain_;
};

TEST(ListModel, DoesAsAPlainModelWouldWhateverComes) {
  // Asks for more than a quick run wants.
  const char* const wanted = std::getenv("ZOLVANE_RANDOM_RUNS");
  const unsigned long runs = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 60;
  constexpr int kSteps = 150;
  for (unsigned seed = 0; seed < runs; ++seed) {
    RandomRun run(seed);
    for (int step = 0; step < kSteps; ++step) {
      SCOPED_TRACE(String::formatted("seed %d, step %d", static_cast<int>(seed), step).c_str());
      run.step();
      run.expect_alike();
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace
