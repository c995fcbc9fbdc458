#include "inspect/database_content.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>
#include <unordered_set>

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

template <size_t room>
String name_at(InstallerRecord& record, unsigned field) {
  char buffer[room] = {};
  check(record.text(field, buffer, room));
  return buffer;
}

ColumnType type_of(const String& installer_type) {
  return std::string_view("iIjJ").find(*installer_type.c_str()) < 4 ? ColumnType::integer
                                                                    : ColumnType::text;
}

/// Equal texts share a block: the names of a package's components, folders and files stand in many
/// of its tables.
class TextPool {
 public:
  const String& text(std::string_view text) {
    const auto known = texts_.find(text);
    if (known != texts_.end()) return *known;
    return *texts_.emplace(text.data(), text.size(), nullptr, 0).first;
  }
  const String& decimal(int32_t number) {
    char digits[16];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return text({digits, static_cast<size_t>(end - digits)});
  }

 private:
  static std::string_view view(const String& text) noexcept {
    return {text.c_str(), text.length()};
  }
  static std::string_view view(std::string_view text) noexcept { return text; }

  struct Hash {
    using is_transparent = void;
    template <typename Text>
    size_t operator()(const Text& text) const noexcept {
      return std::hash<std::string_view>()(view(text));
    }
  };
  struct Equal {
    using is_transparent = void;
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const noexcept {
      return view(a) == view(b);
    }
  };

  std::unordered_set<String, Hash, Equal> texts_;
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
  for (const Column* column : asked)
    list.appendf(list.empty() ? "`%s`" : ",`%s`", column->name);
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
  void read_cell(InstallerRecord& record, unsigned field, ColumnType type, Cell& cell);

  InstallerDatabase& database_;
  TextPool pool_;
};

std::unique_ptr<InstallerView> DatabaseReader::view(const String& query) {
  std::unique_ptr<InstallerView> view;
  check(database_.open_view(query.c_str(), view));
  return view;
}

void DatabaseReader::read_names(DatabaseContent::Schemas& schemas) {
  const ORLO::ExceptionContext context("reading the names of the tables");
  const auto tables = view("select `Name` from `_Tables`");
  std::unique_ptr<InstallerRecord> record;
  InstallerStatus status = kInstallerSuccess;
  while ((status = tables->fetch(record)) == kInstallerSuccess) {
    schemas.try_emplace(name_at<kTextRoom>(*record, 1));
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
  schema.addColumn(kRowId, ColumnType::integer, true);
  for (int i = 1; i <= count; ++i) {
    const auto field = static_cast<unsigned>(i);
    const String column = name_at<kTextRoom>(*names, field);
    const ColumnType type = type_of(name_at<kTypeRoom>(*types, field));
    // The number stays the key: without it one row would replace the other.
    if (ORLO::compare_bytes(column, kRowId) != 0) schema.addColumn(column, type);
  }
}

void DatabaseReader::read_rows(const String& name, Table& table) {
  const std::vector<const Column*> asked = asked_columns(table);
  if (asked.empty()) return;
  const ORLO::ExceptionContext context("reading the rows of a table", name);
  const auto rows = view(row_query(asked, name));
  const auto number_cell = static_cast<size_t>(table.column(kRowId).index);
  const Cell empty{pool_.text({})};
  Row row;
  std::unique_ptr<InstallerRecord> record;
  for (int32_t number = 1; rows->fetch(record) == kInstallerSuccess; ++number) {
    row.cells.assign(table.column_count(), empty);
    row.cells[number_cell].text = pool_.decimal(number);
    row.cells[number_cell].set_integer(number);
    unsigned field = 0;
    for (const Column* column : asked) {
      read_cell(*record, ++field, column->type, row.cells[static_cast<size_t>(column->index)]);
    }
    table.addRow(row);
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
