// A small in-memory relational table: typed columns, rows in key order, a lock of its own.
#pragma once

#include <bit>
#include <cstdint>
#include <map>
#include <vector>

#include "orlo/byte_order.h"
#include "orlo/rstring.h"
#include "orlo/thread.h"

namespace Trellis {
class XMLNode;
class XMLWriter;
}  // namespace Trellis

enum class ColumnType : int32_t { text = 0, integer = 1, real = 2, date = 3 };

struct Column {
  String name;
  ColumnType type = ColumnType::text;
  int32_t index = -1;  ///< position of the column's cell in a Row; -1 until a table assigns it
  bool isKey = false;
  bool isTracked = true;  ///< compared with the last run and written to the history
};

/// `text` is always set, and every comparison of rows looks at it alone.
struct Cell {
  String text;
  uint64_t value = 0;  ///< bits of a 32-bit integer (low half) or of a 64-bit float

  int32_t integer() const noexcept { return static_cast<int32_t>(static_cast<uint32_t>(value)); }
  double real() const noexcept { return std::bit_cast<double>(value); }
  void set_integer(int32_t number) noexcept { value = static_cast<uint32_t>(number); }
  /// The number and its "%d" text.
  void set_number(int32_t number);
};

struct Row {
  /// In a table of differences: the row exists only in the second operand and has no cells.
  static constexpr int32_t kRemoved = 255;

  std::vector<Cell> cells;
  int32_t marker = 0;
};

/// Texts of the key columns, in the order of Table::columns. Ordered element by element, by
/// unsigned bytes; a prefix sorts first.
struct RowKey {
  std::vector<String> texts;

  bool operator<(const RowKey& other) const noexcept;
  bool operator==(const RowKey& other) const noexcept;
};

using ORLO::ByteOrder;
using ORLO::compare_bytes;

using ColumnIndices = std::vector<int32_t>;

class Table {
 public:
  using Columns = std::map<String, Column, ByteOrder>;
  using Rows = std::map<RowKey, Row>;

  Table() = default;
  Table(const Table& other);
  /// The differences: rows new or different in `first` as copies, rows only in `second` with the
  /// marker Row::kRemoved. Takes the locks in the order result, first, second.
  Table(const Table& first, const Table& second);
  Table& operator=(const Table& other) = delete;

  /// Finds or inserts the column and sets its fields. The reference lives as long as the table.
  const Column& addColumn(const String& name, ColumnType type, bool isKey = false,
                          bool isTracked = true);
  /// Throws UserException "column not found".
  const Column& column(const String& name) const;
  /// Inserts, or replaces the row with the same key as a whole.
  void addRow(const Row& row);
  /// Becomes a copy of `other`, under both locks, this one's first.
  void assign(const Table& other);
  /// Erases the row with this key, if there is one.
  void erase(const RowKey& key);
  void clear_rows();

  /// An element "row" for each row in key order, with the texts of the tracked columns that aren't
  /// empty as attributes. Takes no lock: no other thread may work on the table.
  void writeRows(Trellis::XMLWriter& writer) const;
  /// Adds a row for each child "row", in their order. Numbers are read from their text. Throws
  /// UserException "column not found" at an attribute that is no column; the rows before it stay.
  void readRows(const Trellis::XMLNode& node);

  RowKey key_of(const Row& row) const;
  size_t column_count() const noexcept { return columns.size(); }
  size_t size() const;

  mutable ORLO::CriticalSection lock;
  // Guarded by `lock`.
  Columns columns;
  uint32_t keyColumnCount = 0;
  Rows rows;
};

/// Walks both lists of column indices in step, to the end of the shorter one: -1, 0 or 1 by the
/// first texts that differ.
int compareRows(const Row& rowA, const ColumnIndices& columnsA, const Row& rowB,
                const ColumnIndices& columnsB) noexcept;

/// Bit (index modulo 32) is set for each column of the list whose texts differ.
uint32_t changeMask(const Row& newRow, const Row& oldRow, const ColumnIndices& columns) noexcept;

/// Indices of the key columns, or of the tracked ones, in the order of Table::columns.
ColumnIndices keyColumns(const Table& table);
ColumnIndices trackedColumns(const Table& table);
