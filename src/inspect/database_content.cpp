#include "inspect/database_content.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

#include "orlo/exception.h"

namespace {

constexpr size_t kTextRoom = 1024;
constexpr size_t kTypeRoom = 128;
constexpr char kBinary[] = "<binary>";
/// Each database has them, but doesn't list them.
constexpr const char* kSystemTables[] = {"_Tables", "_Columns", "_Streams", "_Storages"};

void check(InstallerStatus status) {
  if (status != kInstallerSuccess) throw ORLO::SDKException(status);
}

ColumnType type_of(const char* installer_type) {
  const bool number = std::string_view("iIjJ").find(*installer_type) != std::string_view::npos;
  return number ? ColumnType::integer : ColumnType::text;
}

/// Equal texts share a block: the names of a package's components, folders and files stand in many
/// of its tables. A hash table without nodes, as allocations are what loading takes longest for. A
/// text that finds no place near its own takes that of another, which isn't shared any further, so
/// that no choice of texts can make the search long.
class TextPool {
 public:
  /// The reference holds until the next call.
  const String& text(std::string_view text) {
    if (text.empty()) return none_;
    if (2 * count_ >= slots_.size()) grow();
    const uint32_t hash = hash_of(text);
    Slot& slot = slot_for(text, hash);
    if (slot.holds(text, hash)) return slot.text;
    if (slot.hash == kFree) ++count_;
    slot.hash = hash;
    slot.text = String(text.data(), text.size(), nullptr, 0);
    return slot.text;
  }
  const String& decimal(int32_t number) {
    char digits[16];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return text({digits, static_cast<size_t>(end - digits)});
  }
  /// The number of a row, as a text; rows are numbered from 1 in each table. The reference holds
  /// until the next call.
  const String& row_number(int32_t number) {
    const auto place = static_cast<size_t>(number - 1);
    if (place < row_numbers_.size()) return row_numbers_[place];
    if (place < kKnownNumbers) return row_numbers_.emplace_back(decimal(number));
    return decimal(number);
  }

 private:
  static constexpr uint32_t kFree = 0;
  static constexpr size_t kFirstSlots = 1024;
  static constexpr size_t kMostSteps = 32;
  static constexpr size_t kKnownNumbers = 4096;

  struct Slot {
    String text;
    uint32_t hash = kFree;

    bool holds(std::string_view other, uint32_t other_hash) const noexcept {
      return hash == other_hash && text.length() == other.size() &&
             std::memcmp(text.c_str(), other.data(), other.size()) == 0;
    }
  };

  /// FNV-1a.
  static uint32_t hash_of(std::string_view text) noexcept {
    uint32_t hash = 2166136261U;
    for (const char character : text)
      hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    return hash == kFree ? 1 : hash;
  }

  /// The text's slot, a free one, or one to take away.
  Slot& slot_for(std::string_view text, uint32_t hash) {
    const size_t mask = slots_.size() - 1;
    for (size_t step = 0; step < kMostSteps; ++step) {
      Slot& slot = slots_[(hash + step) & mask];
      if (slot.hash == kFree || slot.holds(text, hash)) return slot;
    }
    return slots_[hash & mask];
  }

  void grow() {
    std::vector<Slot> old(std::max(kFirstSlots, 2 * slots_.size()), Slot{none_});
    old.swap(slots_);
    count_ = 0;
    for (Slot& slot : old) {
      if (slot.hash == kFree) continue;
      Slot& place = slot_for({slot.text.c_str(), slot.text.length()}, slot.hash);
      if (place.hash == kFree) ++count_;
      place = slot;
    }
  }

  const String none_;
  std::vector<String> row_numbers_;
  /// As many as a power of two.
  std::vector<Slot> slots_;
  size_t count_ = 0;
};

/// The columns that a query can ask for, in the order of their names.
std::vector<const Column*> asked_columns(const Table& table) {
  std::vector<const Column*> asked;
  for (const auto& [name, column] : table.columns) {
    if (!column.isKey && !name.empty() && can_be_asked_for(name)) asked.push_back(&column);
  }
  return asked;
}

String row_query(const std::vector<const Column*>& asked, const String& table) {
  String list;
  for (const Column* column : asked) {
    list.append(list.empty() ? "`" : ",`");
    list.append(column->name);
    list.append('`');
  }
  return String::formatted("select %#s from `%s`", list, table);
}

class DatabaseReader {
 public:
  explicit DatabaseReader(InstallerDatabase& database) : database_(database) {}

  void read_names(DatabaseContent::Schemas& schemas);
  void read_columns(const String& name, Table& schema);
  void read_rows(const String& name, Table& table);

 private:
  std::unique_ptr<InstallerView> view(const String& query);
  const String& name_at(InstallerRecord& record, unsigned field);
  void read_cell(InstallerRecord& record, unsigned field, ColumnType type, Cell& cell);

  InstallerDatabase& database_;
  TextPool pool_;
};

std::unique_ptr<InstallerView> DatabaseReader::view(const String& query) {
  std::unique_ptr<InstallerView> view;
  check(database_.open_view(query.c_str(), view));
  return view;
}

const String& DatabaseReader::name_at(InstallerRecord& record, unsigned field) {
  char buffer[kTextRoom] = {};
  check(record.text(field, buffer, sizeof buffer));
  return pool_.text(buffer);
}

void DatabaseReader::read_names(DatabaseContent::Schemas& schemas) {
  const ORLO::ExceptionContext context("reading the names of the tables");
  const auto tables = view("select `Name` from `_Tables`");
  std::unique_ptr<InstallerRecord> record;
  InstallerStatus status = kInstallerSuccess;
  while ((status = tables->fetch(record)) == kInstallerSuccess) {
    schemas.try_emplace(name_at(*record, 1));
  }
  if (status != kInstallerNoMoreItems) throw ORLO::SDKException(status);
}

void DatabaseReader::read_columns(const String& name, Table& schema) {
  if (!can_be_asked_for(name)) return;
  const ORLO::ExceptionContext context("reading the columns of a table", name);
  const auto all = view(String::formatted("select * from `%s`", name));
  std::unique_ptr<InstallerRecord> names;
  std::unique_ptr<InstallerRecord> types;
  check(all->column_info(ColumnInfo::names, names));
  check(all->column_info(ColumnInfo::types, types));
  const int count = names->field_count();
  if (count == -1) throw ORLO::LWE();
  schema.addColumn(pool_.text(kRowId), ColumnType::integer, true);
  for (int i = 1; i <= count; ++i) {
    const auto field = static_cast<unsigned>(i);
    const String column = name_at(*names, field);
    char type[kTypeRoom] = {};
    check(types->text(field, type, sizeof type));
    // The number stays the key: without it one row would replace the other.
    if (ORLO::compare_bytes(column, kRowId) != 0) schema.addColumn(column, type_of(type));
  }
}

void DatabaseReader::read_rows(const String& name, Table& table) {
  const std::vector<const Column*> asked = asked_columns(table);
  if (asked.empty()) return;
  const ORLO::ExceptionContext context("reading the rows of a table", name);
  const auto rows = view(row_query(asked, name));
  const auto number_cell = static_cast<size_t>(table.column(kRowId).index);
  Row blank;
  blank.cells.assign(table.column_count(), Cell{pool_.text("")});
  const ORLO::Lock hold(table.lock);
  auto next = table.rows.end();
  std::unique_ptr<InstallerRecord> record;
  for (int32_t number = 1; rows->fetch(record) == kInstallerSuccess; ++number) {
    Row row = blank;
    const String& number_text = pool_.row_number(number);
    row.cells[number_cell].text = number_text;
    row.cells[number_cell].set_integer(number);
    RowKey key;
    key.texts.push_back(number_text);
    unsigned field = 0;
    for (const Column* column : asked) {
      read_cell(*record, ++field, column->type, row.cells[static_cast<size_t>(column->index)]);
    }
    // Nine times out of ten the next number stands just after this one.
    next = std::next(table.rows.emplace_hint(next, std::move(key), std::move(row)));
  }
}

void DatabaseReader::read_cell(InstallerRecord& record, unsigned field, ColumnType type,
                               Cell& cell) {
  if (type == ColumnType::integer) {
    const int32_t number = record.integer(field);
    if (number == kInstallerNull) return;
    cell.text = pool_.decimal(number);
    cell.set_integer(number);
    return;
  }
  char buffer[kTextRoom];
  buffer[0] = '\0';
  const InstallerStatus status = record.text(field, buffer, sizeof buffer);
  if (status == kInstallerTypeMismatch) {
    cell.text = pool_.text(kBinary);
    return;
  }
  if (status != kInstallerMoreData) check(status);
  cell.text = pool_.text(buffer);
}

}  // namespace

void DatabaseContent::load(InstallerDatabases& databases, const String& path) {
  const ORLO::ExceptionContext context("opening a package", path);
  std::unique_ptr<InstallerDatabase> database;
  check(databases.open(path.c_str(), database));
  DatabaseReader reader(*database);
  reader.read_names(schemas_);
  for (auto& [name, schema] : schemas_)
    reader.read_columns(name, schema);
  for (const char* name : kSystemTables)
    reader.read_columns(name, schemas_[name]);
  for (const auto& [name, schema] : schemas_) {
    const auto& table = tables_[name] = ORLO::RefPtr(new RefTable(schema));
    reader.read_rows(name, *table);
  }
}

bool can_be_asked_for(const String& name, ORLO::LeadByteTest lead_byte) {
  for (const char* at = name.c_str(); *at != '\0'; ++at) {
    if (*at == '`') return false;
    // A back tick's code may be half of a character.
    if (lead_byte(static_cast<unsigned char>(*at)) && at[1] != '\0') ++at;
  }
  return true;
}

std::vector<ShownColumn> shown_columns(const Table& schema) {
  std::vector<ShownColumn> shown;
  for (const auto& [name, column] : schema.columns) {
    if (column.isKey || name.empty()) continue;
    shown.push_back({name, column.type == ColumnType::integer, column.index});
  }
  std::sort(shown.begin(), shown.end(),
            [](const ShownColumn& a, const ShownColumn& b) { return a.cell < b.cell; });
  return shown;
}
