#include "platform/installer_database.h"

#include <windows.h>

#include <msiquery.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "orlo/file_modes.h"
#include "orlo/owned_handle.h"
#include "platform/package_file_check.h"
#include "platform/system_installer.h"
#include "platform/whole_characters.h"

namespace {

constexpr char kModule[] = "msi.dll";

/// What a call that succeeds without giving a handle is taken for.
constexpr InstallerStatus kNoHandle = ERROR_INVALID_HANDLE;

/// Null where the system lacks one.
struct MsiFunctions {
  explicit MsiFunctions(ORLO::ModuleFunctions& functions) {
    find(functions, "MsiOpenDatabaseA", open_database);
    find(functions, "MsiDatabaseOpenViewA", open_view);
    find(functions, "MsiViewExecute", execute);
    find(functions, "MsiViewGetColumnInfo", column_info);
    find(functions, "MsiViewFetch", fetch);
    find(functions, "MsiRecordGetFieldCount", field_count);
    find(functions, "MsiRecordGetStringA", text);
    find(functions, "MsiRecordGetInteger", integer);
    find(functions, "MsiCloseHandle", close);
  }

  decltype(&MsiOpenDatabaseA) open_database;
  decltype(&MsiDatabaseOpenViewA) open_view;
  decltype(&MsiViewExecute) execute;
  decltype(&MsiViewGetColumnInfo) column_info;
  decltype(&MsiViewFetch) fetch;
  decltype(&MsiRecordGetFieldCount) field_count;
  decltype(&MsiRecordGetStringA) text;
  decltype(&MsiRecordGetInteger) integer;
  decltype(&MsiCloseHandle) close;
  bool complete = true;

 private:
  template <typename Type>
  void find(ORLO::ModuleFunctions& functions, const char* name, Type& function) {
    function = reinterpret_cast<Type>(functions.find(kModule, name));
    complete = complete && function != nullptr;
  }
};

/// A handle with the function that closes it.
struct MsiHandle {
  MSIHANDLE value = 0;
  decltype(&MsiCloseHandle) close = nullptr;

  bool operator==(const MsiHandle& other) const noexcept { return value == other.value; }
};

struct MsiHandleTraits {
  using Handle = MsiHandle;
  static Handle invalid() noexcept { return {}; }
  static void close(Handle handle) noexcept { handle.close(handle.value); }
};
using OwnedMsiHandle = ORLO::OwnedHandle<MsiHandleTraits>;

/// Calls `open` with the address of a handle. What a call that fails leaves there is no handle.
template <typename Open>
InstallerStatus open_handle(const MsiFunctions& msi, OwnedMsiHandle& handle, const Open& open) {
  MSIHANDLE opened = 0;
  const InstallerStatus status = open(&opened);
  if (status != kInstallerSuccess) return status;
  handle.reset({opened, msi.close});
  return handle ? kInstallerSuccess : kNoHandle;
}

/// The bytes before the NUL, or all `room` of them.
size_t text_length(const char* text, size_t room) {
  const void* const end = std::memchr(text, '\0', room);
  return end != nullptr ? static_cast<size_t>(static_cast<const char*>(end) - text) : room;
}

size_t system_length(unsigned char byte) noexcept {
  return IsDBCSLeadByte(byte) != FALSE ? 2 : 1;
}

CharacterLength character_length() {
  return GetACP() == CP_UTF8 ? utf8_length : system_length;
}

/// Nothing says that the system ends what it cuts off: the buffer's bytes after it are zero.
InstallerStatus read_beginning(const MsiFunctions& msi, MSIHANDLE record, unsigned field,
                               char* buffer, size_t room) {
  std::memset(buffer, 0, room);
  auto length = static_cast<DWORD>(room);
  const InstallerStatus status = msi.text(record, field, buffer, &length);
  const size_t fitting = text_length(buffer, room - 1);
  buffer[whole_characters(buffer, fitting, character_length())] = '\0';
  return status;
}

/// Most texts fit, and opening a package reads thousands of them: room is cleared only for one that
/// doesn't.
InstallerStatus read_text(const MsiFunctions& msi, MSIHANDLE record, unsigned field, char* buffer,
                          size_t room) {
  if (room == 0) return kInstallerMoreData;
  *buffer = '\0';
  auto length = static_cast<DWORD>(room);
  const InstallerStatus status = msi.text(record, field, buffer, &length);
  if (status == kInstallerMoreData) return read_beginning(msi, record, field, buffer, room);
  const size_t end = status == kInstallerSuccess ? std::min<size_t>(length, room - 1) : 0;
  buffer[end] = '\0';
  return status;
}

/// Which columns of a view are streams; asked for when it is first of interest.
class StreamColumns {
 public:
  StreamColumns(const MsiFunctions& msi, MSIHANDLE view) : msi_(msi), view_(view) {}

  bool contain(unsigned field) {
    if (!known_) known_ = ask();
    return field - 1 < known_->size() && (*known_)[field - 1];
  }

 private:
  /// None where the system doesn't tell.
  std::vector<bool> ask() const {
    OwnedMsiHandle types;
    open_handle(msi_, types, [this](MSIHANDLE* opened) {
      return msi_.column_info(view_, MSICOLINFO_TYPES, opened);
    });
    if (!types) return {};
    const unsigned count = msi_.field_count(types.get().value);
    std::vector<bool> streams;
    for (unsigned field = 1; field <= count && count != kNoCount; ++field)
      streams.push_back(is_stream(types.get().value, field));
    return streams;
  }

  bool is_stream(MSIHANDLE types, unsigned field) const {
    char type[8];
    read_text(msi_, types, field, type, sizeof type);
    return type[0] == 'v' || type[0] == 'V';
  }

  static constexpr unsigned kNoCount = 0xFFFFFFFF;

  const MsiFunctions& msi_;
  const MSIHANDLE view_;
  std::optional<std::vector<bool>> known_;
};

class SystemRecord final : public InstallerRecord {
 public:
  /// `streams` is null for a record that isn't a row.
  SystemRecord(const MsiFunctions& msi, OwnedMsiHandle handle, StreamColumns* streams)
      : msi_(msi), handle_(std::move(handle)), streams_(streams) {}

  int field_count() override { return static_cast<int>(msi_.field_count(handle_.get().value)); }

  InstallerStatus text(unsigned field, char* buffer, size_t room) override {
    if (streams_ == nullptr || !streams_->contain(field)) {
      return read_text(msi_, handle_.get().value, field, buffer, room);
    }
    if (room > 0) *buffer = '\0';
    return kInstallerTypeMismatch;
  }

  int32_t integer(unsigned field) override { return msi_.integer(handle_.get().value, field); }

  /// Whether it is a row of the view that these belong to.
  bool is_row_of(const StreamColumns& streams) const noexcept { return streams_ == &streams; }
  void become(OwnedMsiHandle handle) noexcept { handle_ = std::move(handle); }

 private:
  const MsiFunctions& msi_;
  OwnedMsiHandle handle_;
  StreamColumns* const streams_;
};

class SystemView final : public InstallerView {
 public:
  SystemView(const MsiFunctions& msi, OwnedMsiHandle handle)
      : msi_(msi), handle_(std::move(handle)), streams_(msi, handle_.get().value) {}

  InstallerStatus column_info(ColumnInfo kind, std::unique_ptr<InstallerRecord>& record) override {
    const auto info = static_cast<MSICOLINFO>(kind);
    OwnedMsiHandle columns;
    const InstallerStatus status = open_handle(msi_, columns, [this, info](MSIHANDLE* opened) {
      return msi_.column_info(handle_.get().value, info, opened);
    });
    record.reset();
    if (columns) record = std::make_unique<SystemRecord>(msi_, std::move(columns), nullptr);
    return status;
  }

  InstallerStatus fetch(std::unique_ptr<InstallerRecord>& record) override {
    OwnedMsiHandle row;
    const InstallerStatus status = open_handle(
        msi_, row, [this](MSIHANDLE* opened) { return msi_.fetch(handle_.get().value, opened); });
    if (!row) {
      record.reset();
    } else if (!take_over(record.get(), row)) {
      record = std::make_unique<SystemRecord>(msi_, std::move(row), &streams_);
    }
    return status;
  }

 private:
  /// The last row's record becomes that of the next one.
  bool take_over(InstallerRecord* record, OwnedMsiHandle& row) const noexcept {
    auto* const last = dynamic_cast<SystemRecord*>(record);
    if (last == nullptr || !last->is_row_of(streams_)) return false;
    last->become(std::move(row));
    return true;
  }

  const MsiFunctions& msi_;
  const OwnedMsiHandle handle_;
  StreamColumns streams_;
};

class SystemDatabase final : public InstallerDatabase {
 public:
  SystemDatabase(const MsiFunctions& msi, OwnedMsiHandle handle)
      : msi_(msi), handle_(std::move(handle)) {}

  InstallerStatus open_view(const char* query, std::unique_ptr<InstallerView>& view) override {
    view.reset();
    OwnedMsiHandle handle;
    InstallerStatus status = open_handle(msi_, handle, [this, query](MSIHANDLE* opened) {
      return msi_.open_view(handle_.get().value, query, opened);
    });
    if (status == kInstallerSuccess) status = msi_.execute(handle.get().value, 0);
    if (status == kInstallerSuccess) view = std::make_unique<SystemView>(msi_, std::move(handle));
    return status;
  }

 private:
  const MsiFunctions& msi_;
  const OwnedMsiHandle handle_;
};

/// Opens nothing that the system would stumble over; what can't be read is the system's to refuse.
bool is_sound(const char* path) {
  const auto file = ORLO::open_raw_file(path, ORLO::FileAccess::read, ORLO::kOpenExisting,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, 0);
  if (file == nullptr) return true;
  const auto code_page = check_package_file(*file);
  return code_page && (*code_page == CP_ACP || IsValidCodePage(*code_page) != FALSE);
}

class SystemDatabases final : public InstallerDatabases {
 public:
  explicit SystemDatabases(ORLO::ModuleFunctions& functions) : functions_(functions) {}

  InstallerStatus open(const char* path, std::unique_ptr<InstallerDatabase>& database) override {
    database.reset();
    if (!msi_) msi_.emplace(functions_);
    if (!msi_->complete || !is_sound(path)) return kInstallerOpenFailed;
    OwnedMsiHandle handle;
    const InstallerStatus status = open_handle(*msi_, handle, [this, path](MSIHANDLE* opened) {
      return msi_->open_database(path, MSIDBOPEN_READONLY, opened);
    });
    if (handle) database = std::make_unique<SystemDatabase>(*msi_, std::move(handle));
    return status;
  }

 private:
  ORLO::ModuleFunctions& functions_;
  std::optional<MsiFunctions> msi_;
};

}  // namespace

std::unique_ptr<InstallerDatabases> make_installer_databases(ORLO::ModuleFunctions& functions) {
  return std::make_unique<SystemDatabases>(functions);
}

std::unique_ptr<InstallerDatabases> make_system_installer_databases() {
  return make_installer_databases(ORLO::system_functions());
}
