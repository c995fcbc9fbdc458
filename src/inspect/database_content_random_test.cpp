// Random databases, read and judged by a model that knows nothing of tables, queries and records.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "inspect/database_content_test_support.h"

namespace {

using Memory = MemoryInstallerDatabases;

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}

  int roll(int faces) { return static_cast<int>(random_() % static_cast<unsigned>(faces)); }
  template <typename T>
  const T& pick(const std::vector<T>& from) {
    return from[static_cast<size_t>(roll(static_cast<int>(from.size())))];
  }

 private:
  std::mt19937 random_;
};

std::string random_text(Dice& dice) {
  static const std::vector<int> kLengths{0, 1, 2, 20, 1022, 1023, 1024, 1500};
  const int length = dice.roll(20) == 0 ? dice.pick(kLengths) : dice.roll(4);
  std::string text;
  for (int i = 0; i < length; ++i)
    text += static_cast<char>('a' + dice.roll(3));
  return text;
}

Memory::Value random_value(Dice& dice) {
  static const std::vector<int32_t> kNumbers{INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX};
  switch (dice.roll(8)) {
    case 0:
      return Memory::Null();
    case 1:
      return dice.pick(kNumbers);
    case 2:
    case 3:
      return dice.roll(1000);
    default:
      return random_text(dice);
  }
}

Memory::Table random_table(Dice& dice) {
  static const std::vector<std::string> kNames{"T", "File",        "t", "A table",
                                               "`", "_Validation", "z"};
  static const std::vector<std::string> kColumns{"A", "B",  "C",      "a", "Z z",
                                                 "",  "`x", "row-id", "1"};
  static const std::vector<std::string> kTypes{"s72", "S0", "l255", "i2", "I4",
                                               "j4",  "v0", "",     "?"};
  Memory::Table table{dice.pick(kNames) + (dice.roll(3) == 0 ? "2" : ""), {}, {}};
  for (int columns = dice.roll(9); columns > 0; --columns)
    table.columns.push_back({dice.pick(kColumns), dice.pick(kTypes)});
  for (int rows = dice.roll(25); rows > 0; --rows) {
    auto& row = table.rows.emplace_back();
    // Some rows are shorter than the table is wide.
    for (size_t i = dice.roll(9) == 0 ? 2 : 0; i < table.columns.size(); ++i)
      row.push_back(random_value(dice));
  }
  return table;
}

bool has_tick(const std::string& name) {
  return name.find('`') != name.npos;
}

/// A column that is shown, with the place of its values.
struct Shown {
  std::string name;
  char type;
  size_t place;
  bool is_stream;
};

/// The first of several columns of one name has the values, the last one says the type.
std::vector<Shown> shown_of(const Memory::Table& table) {
  std::vector<Shown> all;
  if (has_tick(table.name)) return all;
  for (size_t place = 0; place < table.columns.size(); ++place) {
    const std::string& name = table.columns[place].name;
    const char type = table.columns[place].type.c_str()[0];
    if (name.empty() || name == "row-id") continue;
    const auto known =
        std::find_if(all.begin(), all.end(), [&](const Shown& one) { return one.name == name; });
    if (known != all.end())
      known->type = type;
    else
      all.push_back({name, type, place, type == 'v'});
  }
  return all;
}

std::string expected_text(const Shown& column, const std::vector<Memory::Value>& row) {
  if (has_tick(column.name)) return "";
  const Memory::Value value = column.place < row.size() ? row[column.place] : Memory::Null();
  const auto* const number = std::get_if<int32_t>(&value);
  if (column.type == 'i' || column.type == 'I' || column.type == 'j') {
    const bool has_number = !column.is_stream && number != nullptr && *number != INT32_MIN;
    return has_number ? std::to_string(*number) : "";
  }
  if (column.is_stream) return "<binary>";
  if (number != nullptr) return std::to_string(*number);
  const auto* const text = std::get_if<std::string>(&value);
  return text == nullptr ? "" : text->substr(0, 1023);
}

Texts expected_titles(const Memory::Table& table) {
  Texts result;
  for (const Shown& column : shown_of(table))
    result.push_back(column.name);
  return result;
}

Lines expected_lines(const Memory::Table& table) {
  const std::vector<Shown> columns = shown_of(table);
  const bool any_asked = std::any_of(columns.begin(), columns.end(),
                                     [](const Shown& column) { return !has_tick(column.name); });
  std::map<std::string, Texts> by_number;
  for (size_t i = 0; any_asked && i < table.rows.size(); ++i) {
    Texts& line = by_number[std::to_string(i + 1)];
    line.push_back(std::to_string(i + 1));
    for (const Shown& column : columns)
      line.push_back(expected_text(column, table.rows[i]));
  }
  Lines result;
  for (const auto& [number, line] : by_number)
    result.push_back(line);
  return result;
}

void check_random_database(unsigned seed) {
  Dice dice(seed);
  Memory memory;
  Memory::Database& database = memory.add("r.msi");
  for (int tables = dice.roll(12); tables > 0; --tables)
    database.tables.push_back(random_table(dice));
  DatabaseContent content;
  content.load(memory, "r.msi");
  EXPECT_EQ(memory.open_objects(), 0);
  std::map<std::string, const Memory::Table*> first_of_name;
  for (const Memory::Table& table : database.tables)
    first_of_name.try_emplace(table.name, &table);
  EXPECT_EQ(content.tables().size(), first_of_name.size() + 4);
  for (const auto& [name, table] : first_of_name) {
    EXPECT_EQ(titles(content, name), expected_titles(*table)) << name;
    EXPECT_EQ(lines(content, name), expected_lines(*table)) << name;
  }
}

TEST(RandomDatabases, AreReadAsTheirModelSays) {
  for (unsigned seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE(seed);
    check_random_database(seed);
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace
