// The seam to the databases of Windows Installer packages: queries, their records, the fields of
// these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/installer.h"

/// A stream has no text.
inline constexpr InstallerStatus kInstallerTypeMismatch = 1804;
inline constexpr InstallerStatus kInstallerOpenFailed = 110;
inline constexpr InstallerStatus kInstallerBadQuery = 1615;

/// What integer() gives for a field without a value (MSI_NULL_INTEGER).
inline constexpr int32_t kInstallerNull = INT32_MIN;

/// Fields count from 1. Belongs to one thread, and mustn't outlive what it came from.
class InstallerRecord {
 public:
  virtual ~InstallerRecord() = default;
  /// MsiRecordGetFieldCount: -1 on failure; why is the thread's last error then.
  virtual int field_count() = 0;
  /// MsiRecordGetStringA, in the code page: `room` counts the NUL, which is always there
  /// afterwards. kInstallerMoreData if only the beginning fits, which never ends with half a
  /// character; kInstallerTypeMismatch for each field of a stream column, whatever the platform
  /// says of it.
  virtual InstallerStatus text(unsigned field, char* buffer, size_t room) = 0;
  /// MsiRecordGetInteger.
  virtual int32_t integer(unsigned field) = 0;
};

enum class ColumnInfo { names = 0, types = 1 };

/// An executed query.
class InstallerView {
 public:
  virtual ~InstallerView() = default;
  /// MsiViewGetColumnInfo: a field for each column of the query.
  virtual InstallerStatus column_info(ColumnInfo kind,
                                      std::unique_ptr<InstallerRecord>& record) = 0;
  /// MsiViewFetch: kInstallerNoMoreItems once, after the last row; what another call gives then
  /// isn't said. There is no record after a failure, and none of the row before after a success.
  virtual InstallerStatus fetch(std::unique_ptr<InstallerRecord>& record) = 0;
};

class InstallerDatabase {
 public:
  virtual ~InstallerDatabase() = default;
  /// MsiDatabaseOpenViewA and MsiViewExecute without parameters.
  virtual InstallerStatus open_view(const char* query, std::unique_ptr<InstallerView>& view) = 0;
};

class InstallerDatabases {
 public:
  virtual ~InstallerDatabases() = default;
  /// MsiOpenDatabaseA, only to be read.
  virtual InstallerStatus open(const char* path, std::unique_ptr<InstallerDatabase>& database) = 0;
};

/// Those of this system; on one without an installer no database can be opened.
std::unique_ptr<InstallerDatabases> make_system_installer_databases();
