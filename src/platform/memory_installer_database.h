// Databases of installer packages in memory, for tests and for the build machine: any content,
// also such as contradicts itself, any failure on demand.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/installer_database.h"
#include "platform/whole_characters.h"

/// Understands "select * from `T`" and "select `A`,`B` from `T`", with names as they are, in back
/// ticks. `_Tables`, `_Columns`, `_Streams` and `_Storages` say what the other tables consist of,
/// unless a database has a table of that name. Belongs to one thread and must outlive what it has
/// opened.
class MemoryInstallerDatabases final : public InstallerDatabases {
 public:
  struct Null {};
  struct Stream {};
  using Value = std::variant<Null, int32_t, std::string, Stream>;
  struct Column {
    std::string name;
    std::string type;  ///< as the platform tells it: "s72", "S255", "i2", "I4", "v0", "j4"
  };
  struct Table {
    std::string name;
    std::vector<Column> columns;
    std::vector<std::vector<Value>> rows;  ///< values that are missing are null
  };
  struct Database {
    std::vector<Table> tables;
  };

  /// An empty database, over the one that is there. The reference holds until it is replaced.
  Database& add(const std::string& path) { return databases_[path] = Database(); }
  /// The next `times` calls that read `call` in their words answer `status`; times -1 is for ever.
  /// A bare operation stands for all its calls. The words: "open PATH", "open_view QUERY",
  /// "column_info 0" (names) or 1 (types), "fetch 3" for the third record of a view, "text 2" for
  /// the second field, "field_count" (which answers -1 with `status` as the thread's last error).
  void fail(const std::string& call, InstallerStatus status, int times = 1);
  /// How characters are told apart where a text is cut off.
  void set_character_length(CharacterLength length) noexcept { character_length_ = length; }
  /// Databases, views and records that are open now.
  int open_objects() const noexcept { return open_objects_; }
  /// The queries so far, good or bad.
  const std::vector<std::string>& queries() const noexcept { return queries_; }

  InstallerStatus open(const char* path, std::unique_ptr<InstallerDatabase>& database) override;

 private:
  class OpenDatabase;
  class OpenView;
  class OpenRecord;
  struct OpenObject;
  struct Failure {
    std::string call;
    InstallerStatus status;
    int times;
  };

  InstallerStatus enter(const char* operation, const std::string& object);
  InstallerStatus enter(const char* operation, size_t number);

  std::map<std::string, Database> databases_;
  std::vector<Failure> failures_;
  std::vector<std::string> queries_;
  CharacterLength character_length_ = code_page_length;
  int open_objects_ = 0;
};
