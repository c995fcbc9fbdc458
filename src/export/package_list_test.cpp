#include "export/package_list.h"

#include <gtest/gtest.h>

namespace {

constexpr int32_t kMachine = -2147483646;
constexpr int32_t kUser = -2147483647;

UninstallEntry make_entry(const char* name, int32_t root = kMachine, const char* source = "A") {
  UninstallEntry entry;
  entry.name = name;
  entry.keyName = name;
  entry.HKEY_ROOT = root;
  entry.source = source;
  return entry;
}

std::vector<std::string> told(const PackageList& list) {
  std::vector<std::string> result;
  for (const auto& [id, entry] : list.entries()) {
    result.push_back(std::to_string(id) + " " + entry.name.c_str() + " " + entry.source.c_str());
  }
  return result;
}
using Told = std::vector<std::string>;

TEST(PackageList, KeepsTheOrderOfArrival) {
  PackageList list;
  for (const char* name : {"b", "c", "a"})
    list.applyEntry(make_entry(name));
  EXPECT_EQ(told(list), (Told{"1 b A", "2 c A", "3 a A"}));
}

TEST(PackageList, MergesIntoTheFirstEntryOfTheSamePackage) {
  PackageList list;
  list.applyEntry(make_entry("x", kMachine));
  list.applyEntry(make_entry("x", kUser));
  list.applyEntry(make_entry("x", 0, "B"));
  list.applyEntry(make_entry("x", kUser, "C"));
  EXPECT_EQ(told(list), (Told{"1 x A, B", "2 x A, C"}));
}

TEST(PackageList, TellsPackagesApartByKeyNameAndNotByName) {
  PackageList list;
  UninstallEntry other = make_entry("x", kMachine, "B");
  other.keyName = "y";
  list.applyEntry(make_entry("x"));
  list.applyEntry(other);
  EXPECT_EQ(told(list), (Told{"1 x A", "2 x B"}));
  UninstallEntry same = make_entry("z", kMachine, "C");
  same.keyName = "y";
  list.applyEntry(same);
  EXPECT_EQ(told(list), (Told{"1 x A", "2 z B, C"}));
}

TEST(PackageList, StartsAnewWhenCleared) {
  PackageList list;
  list.applyEntry(make_entry("x"));
  list.clear();
  EXPECT_EQ(told(list), Told{});
  list.applyEntry(make_entry("x", kMachine, "B"));
  EXPECT_EQ(told(list), Told{"2 x B"});
}

}  // namespace
