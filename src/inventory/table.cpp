#include "inventory/table.h"

#include <algorithm>
#include <cstring>

#include "orlo/exception.h"

namespace {

using ORLO::Lock;

/// Holds two locks, the first one taken first. Never waits for one while it holds the other, so
/// that elsewhere they may be taken in the opposite order.
class LockPair {
 public:
  LockPair(ORLO::CriticalSection& first, ORLO::CriticalSection& second) noexcept
      : first_(first), second_(second) {
    for (first_.enter(); !second_.try_enter(); first_.enter()) {
      first_.leave();
      const Lock until_free(second_);
    }
  }
  ~LockPair() {
    second_.leave();
    first_.leave();
  }
  LockPair(const LockPair&) = delete;
  LockPair& operator=(const LockPair&) = delete;

 private:
  ORLO::CriticalSection& first_;
  ORLO::CriticalSection& second_;
};

const String& text_at(const Row& row, int32_t index) noexcept {
  static const String none;
  const auto position = static_cast<size_t>(index);
  return position < row.cells.size() ? row.cells[position].text : none;
}

ColumnIndices indices_of(const Table& table, bool (*wanted)(const Column&)) {
  ColumnIndices indices;
  for (const auto& [name, column] : table.columns) {
    if (wanted(column)) indices.push_back(column.index);
  }
  return indices;
}

ColumnIndices all_columns(const Table& table) {
  return indices_of(table, [](const Column&) { return true; });
}

/// Columns of two tables that are compared with each other.
struct ColumnPairs {
  std::vector<std::pair<int32_t, int32_t>> pairs;
  size_t cells = 0;  ///< a row with as many has all of them
};

/// In step, to the end of the shorter list, as compareRows walks. For equality the order doesn't
/// matter, and by position the walk goes through a row's texts as they lie in memory.
ColumnPairs pair_columns(const ColumnIndices& a, const ColumnIndices& b) {
  ColumnPairs columns;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    columns.pairs.emplace_back(a[i], b[i]);
    columns.cells = std::max(columns.cells, static_cast<size_t>(std::max(a[i], b[i])) + 1);
  }
  std::sort(columns.pairs.begin(), columns.pairs.end());
  return columns;
}

bool same_text(const String& a, const String& b) noexcept {
  return a.shares_block_with(b) ||
         (a.length() == b.length() && std::memcmp(a.c_str(), b.c_str(), a.length()) == 0);
}

/// Texts that share a block first: mostly that is all of them, and no text needs to be looked at.
bool equal_cells(const Cell* a, const Cell* b, const ColumnPairs& columns) noexcept {
  const auto& pairs = columns.pairs;
  bool all_shared = true;
  for (const auto& [index_a, index_b] : pairs) {
    all_shared &= a[index_a].text.shares_block_with(b[index_b].text);
  }
  return all_shared || std::all_of(pairs.begin(), pairs.end(), [&](const auto& pair) {
           return same_text(a[pair.first].text, b[pair.second].text);
         });
}

bool equal_rows(const Row& a, const Row& b, const ColumnPairs& columns) noexcept {
  if (a.cells.size() >= columns.cells && b.cells.size() >= columns.cells) {
    return equal_cells(a.cells.data(), b.cells.data(), columns);
  }
  return std::all_of(columns.pairs.begin(), columns.pairs.end(), [&](const auto& pair) {
    return same_text(text_at(a, pair.first), text_at(b, pair.second));
  });
}

/// Texts that stay the same keep their blocks, which the other tables share: a row that is read
/// again and again without change costs no memory, and its next comparison no look at its texts.
void replace_row(Row& stored, const Row& row) {
  stored.marker = row.marker;
  if (stored.cells.size() != row.cells.size()) {
    stored.cells = row.cells;
    return;
  }
  for (size_t i = 0; i < row.cells.size(); ++i) {
    Cell& cell = stored.cells[i];
    const String& text = row.cells[i].text;
    if (!same_text(cell.text, text)) cell.text = text;
    cell.value = row.cells[i].value;
  }
}

/// One ordered walk over both row maps.
class DifferenceWalk {
 public:
  DifferenceWalk(const Table& result, const Table& first, const Table& second)
      : first_(first),
        second_(second),
        keys_(keyColumns(result)),
        columns_(pair_columns(all_columns(first), all_columns(second))) {}

  void run(Table::Rows& rows) const {
    auto a = first_.rows.begin();
    auto b = second_.rows.begin();
    while (a != first_.rows.end() || b != second_.rows.end()) {
      const int order = compare(a, b);
      if (order > 0) {
        Row gone;
        gone.marker = Row::kRemoved;
        rows.insert_or_assign(rows.end(), b->first, std::move(gone));
      } else if (order < 0 || !equal_rows(a->second, b->second, columns_)) {
        rows.insert_or_assign(rows.end(), a->first, a->second);
      }
      if (order <= 0) ++a;
      if (order >= 0) ++b;
    }
  }

 private:
  int compare(Table::Rows::const_iterator a, Table::Rows::const_iterator b) const {
    if (b == second_.rows.end()) return -1;
    if (a == first_.rows.end()) return 1;
    return compareRows(a->second, keys_, b->second, keys_);
  }

  const Table& first_;
  const Table& second_;
  const ColumnIndices keys_;
  const ColumnPairs columns_;
};

}  // namespace

void Cell::set_number(int32_t number) {
  text.printf("%d", number);
  set_integer(number);
}

bool RowKey::operator<(const RowKey& other) const noexcept {
  return std::lexicographical_compare(texts.begin(), texts.end(), other.texts.begin(),
                                      other.texts.end(), ByteOrder());
}

bool RowKey::operator==(const RowKey& other) const noexcept {
  return std::equal(texts.begin(), texts.end(), other.texts.begin(), other.texts.end(),
                    [](const String& a, const String& b) { return compare_bytes(a, b) == 0; });
}

Table::Table(const Table& other) {
  assign(other);
}

Table::Table(const Table& first, const Table& second) {
  const Lock hold(lock);
  const Lock hold_first(first.lock);
  const Lock hold_second(second.lock);
  columns = first.columns;
  keyColumnCount = first.keyColumnCount;
  for (const auto& [name, column] : second.columns) {
    if (!columns.contains(name)) addColumn(name, column.type, column.isKey, column.isTracked);
  }
  DifferenceWalk(*this, first, second).run(rows);
}

const Column& Table::addColumn(const String& name, ColumnType type, bool isKey, bool isTracked) {
  const Lock hold(lock);
  Column& column = columns[name];
  column.name = name;
  column.type = type;
  column.isKey = isKey;
  column.isTracked = isTracked;
  if (column.index == -1) {
    column.index = static_cast<int32_t>(columns.size()) - 1;
    if (isKey) ++keyColumnCount;
  }
  return column;
}

const Column& Table::column(const String& name) const {
  const Lock hold(lock);
  const auto found = columns.find(name);
  if (found == columns.end()) throw ORLO::UserException("column not found");
  return found->second;
}

RowKey Table::key_of(const Row& row) const {
  const Lock hold(lock);
  RowKey key;
  key.texts.reserve(keyColumnCount);
  for (const auto& [name, column] : columns) {
    if (column.isKey) key.texts.push_back(text_at(row, column.index));
  }
  return key;
}

void Table::addRow(const Row& row) {
  const Lock hold(lock);
  const auto [stored, added] = rows.try_emplace(key_of(row), row);
  if (!added) replace_row(stored->second, row);
}

void Table::assign(const Table& other) {
  if (this == &other) return;
  const LockPair hold(lock, other.lock);
  columns = other.columns;
  keyColumnCount = other.keyColumnCount;
  rows = other.rows;
}

void Table::erase(const RowKey& key) {
  const Lock hold(lock);
  rows.erase(key);
}

void Table::clear_rows() {
  const Lock hold(lock);
  rows.clear();
}

size_t Table::size() const {
  const Lock hold(lock);
  return rows.size();
}

int compareRows(const Row& rowA, const ColumnIndices& columnsA, const Row& rowB,
                const ColumnIndices& columnsB) noexcept {
  const size_t count = std::min(columnsA.size(), columnsB.size());
  for (size_t i = 0; i < count; ++i) {
    const int order = compare_bytes(text_at(rowA, columnsA[i]), text_at(rowB, columnsB[i]));
    if (order != 0) return order;
  }
  return 0;
}

uint32_t changeMask(const Row& newRow, const Row& oldRow, const ColumnIndices& columns) noexcept {
  uint32_t mask = 0;
  for (const int32_t index : columns) {
    if (compare_bytes(text_at(newRow, index), text_at(oldRow, index)) != 0) {
      mask |= 1U << (static_cast<uint32_t>(index) % 32U);
    }
  }
  return mask;
}

ColumnIndices keyColumns(const Table& table) {
  return indices_of(table, [](const Column& column) { return column.isKey; });
}

ColumnIndices trackedColumns(const Table& table) {
  return indices_of(table, [](const Column& column) { return column.isTracked; });
}
