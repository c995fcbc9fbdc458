#include "view/comparators.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

#include "inventory/text_helpers.h"
#include "orlo/locale.h"
#include "orlo/system_time.h"

namespace {

using Entry = UninstallEntry;
using Text = String Entry::*;
using Number = int32_t Entry::*;
using Date = DateTime Entry::*;

template <typename T>
int sign_of_difference(T a, T b) {
  return static_cast<int>(a > b) - static_cast<int>(a < b);
}

int collate(const char* a, const char* b, bool ignore_case) {
  static const ORLO::Locale& locale = ORLO::system_locale();
  return locale.collate(a, b, ignore_case);
}

int fold(const String& a, const String& b) {
  return collate(a.c_str(), b.c_str(), true);
}

template <Text field>
int by_bytes(const Entry& a, const Entry& b) {
  return std::strcmp((a.*field).c_str(), (b.*field).c_str());
}

template <Text field>
int by_collation(const Entry& a, const Entry& b) {
  return collate((a.*field).c_str(), (b.*field).c_str(), false);
}

template <Text field>
int by_fold(const Entry& a, const Entry& b) {
  return fold(a.*field, b.*field);
}

template <Number field>
int by_number(const Entry& a, const Entry& b) {
  return sign_of_difference(a.*field, b.*field);
}

template <Number field>
int by_unsigned(const Entry& a, const Entry& b) {
  return sign_of_difference(static_cast<uint32_t>(a.*field), static_cast<uint32_t>(b.*field));
}

/// Dates that can't be converted are greater than all others and equal among themselves.
template <Date field>
int by_date(const Entry& a, const Entry& b) {
  ORLO::FileTime time_a = 0;
  ORLO::FileTime time_b = 0;
  const bool known_a = ORLO::to_file_time((a.*field).time, time_a);
  const bool known_b = ORLO::to_file_time((b.*field).time, time_b);
  if (!known_a || !known_b) return static_cast<int>(!known_a) - static_cast<int>(!known_b);
  return sign_of_difference(time_a, time_b);
}

/// Where the name's first letter or digit stands, so that a bracket in front doesn't count.
const char* first_letter(const Entry& entry) {
  const char* text = (entry.displayName.empty() ? entry.name : entry.displayName).c_str();
  while (*text != '\0' && std::isalnum(static_cast<unsigned char>(*text)) == 0)
    ++text;
  return text;
}

int by_program_name(const Entry& a, const Entry& b) {
  return collate(first_letter(a), first_letter(b), true);
}

int by_version(const Entry& a, const Entry& b) {
  return compareVersions(a.displayVersion, b.displayVersion);
}

const String& parent_of(const Entry& entry) {
  return entry.parentName.empty() ? entry.parent : entry.parentName;
}

int by_parent(const Entry& a, const Entry& b) {
  return fold(parent_of(a), parent_of(b));
}

/// New comes before unchanged, and unchanged before all that has changed.
int by_change(const Entry& a, const Entry& b) {
  return sign_of_difference(std::min(a.changed, 1), std::min(b.changed, 1));
}

std::string_view without_braces(const String& text) {
  const std::string_view whole(text.c_str());
  const bool braced = whole.size() >= 3 && whole.front() == '{' && whole.back() == '}';
  return braced ? whole.substr(1, whole.size() - 2) : whole;
}

std::string tree_path(const Entry& entry) {
  std::string path;
  if (!entry.parent.empty()) path.append(without_braces(entry.parent)).append("\\");
  return path.append(without_braces(entry.name));
}

int by_tree(const Entry& a, const Entry& b) {
  return collate(tree_path(a).c_str(), tree_path(b).c_str(), false);
}

constexpr Compare kComparators[] = {
    &by_collation<&Entry::name>,
    &by_bytes<&Entry::source>,
    &by_program_name,
    &by_version,
    &by_bytes<&Entry::parent>,
    &by_parent,
    &by_date<&Entry::installDateValue>,
    &by_date<&Entry::uninstallDateValue>,
    &by_number<&Entry::size>,
    &by_bytes<&Entry::uninstallCmd>,
    &by_bytes<&Entry::modifyCmd>,
    &by_fold<&Entry::installerPath>,
    &by_number<&Entry::OK>,
    &by_fold<&Entry::displayIcon>,
    &by_fold<&Entry::installLocation>,
    &by_date<&Entry::lastUseDateValue>,
    &by_fold<&Entry::packagePath>,
    &by_number<&Entry::features>,
    &by_number<&Entry::patches>,
    &by_number<&Entry::is64Bit>,
    &by_unsigned<&Entry::systemComponent>,
    &by_number<&Entry::frequency>,
    &by_fold<&Entry::comments>,
    &by_fold<&Entry::user>,
    &by_fold<&Entry::publisher>,
    &by_fold<&Entry::contact>,
    &by_fold<&Entry::helpURL>,
    &by_fold<&Entry::helpPhone>,
    &by_fold<&Entry::aboutURL>,
    &by_fold<&Entry::updateURL>,
    &by_change,
    &by_tree,
};
static_assert(std::size(kComparators) == comparatorCount);

}  // namespace

Compare comparator(int column) {
  return kComparators[static_cast<size_t>(column)];
}
