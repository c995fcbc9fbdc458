#include "platform/memory_installer_database.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>

#include "orlo/raw_file.h"

namespace {

using Databases = MemoryInstallerDatabases;
using Column = Databases::Column;
using Database = Databases::Database;
using Table = Databases::Table;
using Value = Databases::Value;

bool is_stream(const Column& column) {
  return column.type.starts_with('v') || column.type.starts_with('V');
}

bool is_text(const Column& column) {
  return !column.type.empty() && std::strchr("sSlLgG", column.type.front()) != nullptr;
}

/// Names of a query; no column at all stands for all of them.
struct Query {
  std::vector<std::string> columns;
  std::string table;
};

/// Takes `word` from the beginning of `rest`; false if it doesn't stand there.
bool take(std::string_view& rest, std::string_view word) {
  if (!rest.starts_with(word)) return false;
  rest.remove_prefix(word.size());
  return true;
}

std::optional<std::string> take_name(std::string_view& rest) {
  if (!take(rest, "`")) return std::nullopt;
  const size_t end = rest.find('`');
  if (end == rest.npos || end == 0) return std::nullopt;
  const std::string name(rest.substr(0, end));
  rest.remove_prefix(end + 1);
  return name;
}

std::optional<Query> parse(std::string_view text) {
  Query query;
  if (!take(text, "select ")) return std::nullopt;
  if (!take(text, "*")) {
    do {
      const auto column = take_name(text);
      if (!column) return std::nullopt;
      query.columns.push_back(*column);
    } while (take(text, ","));
  }
  if (!take(text, " from ")) return std::nullopt;
  const auto table = take_name(text);
  if (!table || !text.empty()) return std::nullopt;
  query.table = *table;
  return query;
}

bool is_own(const std::string& name) {
  return name == "_Tables" || name == "_Columns" || name == "_Streams" || name == "_Storages";
}

/// The number by which the database's own columns know a type.
int32_t type_number(const Column& column) {
  int32_t size = 0;
  const std::string& type = column.type;
  if (!type.empty()) std::from_chars(type.data() + 1, type.data() + type.size(), size);
  constexpr int32_t kValid = 0x100;
  constexpr int32_t kInteger = 0x400;
  constexpr int32_t kText = 0xC00;
  constexpr int32_t kStream = 0x800;
  constexpr int32_t kLocalizable = 0x200;
  constexpr int32_t kNullable = 0x1000;
  int32_t number = kValid | size;
  if (is_stream(column))
    number |= kStream;
  else if (is_text(column))
    number |= kText;
  else if (size == 2)
    number |= kInteger;
  if (type.starts_with('l') || type.starts_with('L')) number |= kLocalizable;
  if (!type.empty() && type.front() < 'a') number |= kNullable;
  return number;
}

Table tables_of(const Database& database) {
  Table result{"_Tables", {{"Name", "s64"}}, {}};
  for (const Table& table : database.tables)
    if (!is_own(table.name)) result.rows.push_back({table.name});
  return result;
}

Table columns_of(const Database& database) {
  Table result{
      "_Columns", {{"Table", "s64"}, {"Number", "i2"}, {"Name", "s64"}, {"Type", "i2"}}, {}};
  for (const Table& table : database.tables) {
    if (is_own(table.name)) continue;
    int32_t number = 0;
    for (const Column& column : table.columns)
      result.rows.push_back({table.name, ++number, column.name, type_number(column)});
  }
  return result;
}

/// A stream is called by its table and the texts of the row up to it.
void add_streams(const Table& table, const std::vector<Value>& row, Table& result) {
  std::string name = table.name;
  for (const Value& value : row) {
    if (const auto* const text = std::get_if<std::string>(&value))
      name.append(1, '.').append(*text);
    if (std::holds_alternative<Databases::Stream>(value))
      result.rows.push_back({name, Databases::Stream()});
  }
}

Table streams_of(const Database& database) {
  Table result{"_Streams", {{"Name", "s62"}, {"Data", "V0"}}, {}};
  for (const Table& table : database.tables)
    for (const std::vector<Value>& row : table.rows)
      add_streams(table, row, result);
  return result;
}

/// Null if there is no such table.
using SharedTable = std::shared_ptr<const Table>;

SharedTable own_table(const Database& database, const std::string& name) {
  if (name == "_Tables") return std::make_shared<Table>(tables_of(database));
  if (name == "_Columns") return std::make_shared<Table>(columns_of(database));
  if (name == "_Streams") return std::make_shared<Table>(streams_of(database));
  return std::make_shared<Table>(Table{"_Storages", {{"Name", "s62"}, {"Data", "V0"}}, {}});
}

SharedTable find_table(const Database& database, const std::string& name) {
  for (const Table& table : database.tables)
    if (table.name == name) return {SharedTable(), &table};
  return is_own(name) ? own_table(database, name) : nullptr;
}

/// Places of the columns that a query asks for; none if one isn't there.
std::optional<std::vector<size_t>> places_of(const Query& query, const Table& table) {
  std::vector<size_t> places;
  for (size_t place = 0; query.columns.empty() && place < table.columns.size(); ++place)
    places.push_back(place);
  for (const std::string& name : query.columns) {
    const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                    [&name](const Column& column) { return column.name == name; });
    if (found == table.columns.end()) return std::nullopt;
    places.push_back(static_cast<size_t>(found - table.columns.begin()));
  }
  return places;
}

Value value_at(const std::vector<Value>& row, size_t place) {
  return place < row.size() ? row[place] : Value();
}

std::string text_of(const Value& value) {
  if (const auto* const number = std::get_if<int32_t>(&value)) return std::to_string(*number);
  const auto* const text = std::get_if<std::string>(&value);
  return text != nullptr ? *text : std::string();
}

/// Also what a text says in decimal, as the platform does.
int32_t number_of(const Value& value) {
  if (const auto* const number = std::get_if<int32_t>(&value)) return *number;
  const std::string text = text_of(value);
  int32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? number : kInstallerNull;
}

InstallerStatus copy(const std::string& text, char* buffer, size_t room, CharacterLength length) {
  if (room == 0) return kInstallerMoreData;
  const bool fits = text.size() < room;
  const size_t copied = fits ? text.size() : whole_characters(text.data(), room - 1, length);
  std::memcpy(buffer, text.data(), copied);
  buffer[copied] = '\0';
  return fits ? kInstallerSuccess : kInstallerMoreData;
}

}  // namespace

/// Counts what is open.
struct MemoryInstallerDatabases::OpenObject {
  explicit OpenObject(MemoryInstallerDatabases& all) : databases(all) { ++databases.open_objects_; }
  OpenObject(const OpenObject&) = delete;
  OpenObject& operator=(const OpenObject&) = delete;
  ~OpenObject() { --databases.open_objects_; }

  MemoryInstallerDatabases& databases;
};

class MemoryInstallerDatabases::OpenRecord final : public InstallerRecord {
 public:
  OpenRecord(MemoryInstallerDatabases& databases, std::vector<Value> values)
      : object_(databases), values_(std::move(values)) {}

  int field_count() override {
    const InstallerStatus status = object_.databases.enter("field_count", 0);
    if (status == kInstallerSuccess) return static_cast<int>(values_.size());
    ORLO::set_last_error(status);
    return -1;
  }

  InstallerStatus text(unsigned field, char* buffer, size_t room) override {
    if (room > 0) *buffer = '\0';
    const InstallerStatus status = object_.databases.enter("text", field);
    if (status != kInstallerSuccess) return status;
    const Value value = value_of(field);
    if (std::holds_alternative<Stream>(value)) return kInstallerTypeMismatch;
    return copy(text_of(value), buffer, room, object_.databases.character_length_);
  }

  int32_t integer(unsigned field) override { return number_of(value_of(field)); }

 private:
  Value value_of(unsigned field) const {
    return field == 0 ? Value() : value_at(values_, field - 1);
  }

  const OpenObject object_;
  const std::vector<Value> values_;
};

class MemoryInstallerDatabases::OpenView final : public InstallerView {
 public:
  OpenView(MemoryInstallerDatabases& databases, SharedTable table, std::vector<size_t> places)
      : object_(databases), table_(std::move(table)), places_(std::move(places)) {}

  InstallerStatus column_info(ColumnInfo kind, std::unique_ptr<InstallerRecord>& record) override {
    record.reset();
    const InstallerStatus status =
        object_.databases.enter("column_info", static_cast<size_t>(kind));
    if (status != kInstallerSuccess) return status;
    std::vector<Value> texts;
    for (const size_t place : places_) {
      const Column& column = table_->columns[place];
      texts.emplace_back(kind == ColumnInfo::names ? column.name : column.type);
    }
    record = std::make_unique<OpenRecord>(object_.databases, std::move(texts));
    return kInstallerSuccess;
  }

  InstallerStatus fetch(std::unique_ptr<InstallerRecord>& record) override {
    record.reset();
    const InstallerStatus status = object_.databases.enter("fetch", next_ + 1);
    if (status != kInstallerSuccess) return status;
    if (next_ >= table_->rows.size()) return kInstallerNoMoreItems;
    const std::vector<Value>& row = table_->rows[next_++];
    std::vector<Value> values;
    for (const size_t place : places_)
      values.push_back(is_stream(table_->columns[place]) ? Value(Stream()) : value_at(row, place));
    record = std::make_unique<OpenRecord>(object_.databases, std::move(values));
    return kInstallerSuccess;
  }

 private:
  const OpenObject object_;
  const SharedTable table_;
  const std::vector<size_t> places_;
  size_t next_ = 0;
};

class MemoryInstallerDatabases::OpenDatabase final : public InstallerDatabase {
 public:
  OpenDatabase(MemoryInstallerDatabases& databases, const Database& database)
      : object_(databases), database_(database) {}

  InstallerStatus open_view(const char* query, std::unique_ptr<InstallerView>& view) override {
    view.reset();
    object_.databases.queries_.emplace_back(query);
    const InstallerStatus status = object_.databases.enter("open_view", query);
    if (status != kInstallerSuccess) return status;
    const auto parsed = parse(query);
    if (!parsed) return kInstallerBadQuery;
    SharedTable table = find_table(database_, parsed->table);
    if (table == nullptr) return kInstallerBadQuery;
    auto places = places_of(*parsed, *table);
    if (!places) return kInstallerBadQuery;
    view = std::make_unique<OpenView>(object_.databases, std::move(table), std::move(*places));
    return kInstallerSuccess;
  }

 private:
  const OpenObject object_;
  const Database& database_;
};

void MemoryInstallerDatabases::fail(const std::string& call, InstallerStatus status, int times) {
  failures_.push_back({call, status, times});
}

/// The status that the call is to fail with, or success.
InstallerStatus MemoryInstallerDatabases::enter(const char* operation, const std::string& object) {
  const std::string call = operation + (' ' + object);
  for (Failure& failure : failures_) {
    if (failure.times == 0 || (failure.call != call && failure.call != operation)) continue;
    if (failure.times > 0) --failure.times;
    return failure.status;
  }
  return kInstallerSuccess;
}

InstallerStatus MemoryInstallerDatabases::enter(const char* operation, size_t number) {
  return failures_.empty() ? kInstallerSuccess : enter(operation, std::to_string(number));
}

InstallerStatus MemoryInstallerDatabases::open(const char* path,
                                               std::unique_ptr<InstallerDatabase>& database) {
  database.reset();
  const InstallerStatus status = enter("open", path);
  if (status != kInstallerSuccess) return status;
  const auto found = databases_.find(path);
  if (found == databases_.end()) return kInstallerOpenFailed;
  database = std::make_unique<OpenDatabase>(*this, found->second);
  return kInstallerSuccess;
}
