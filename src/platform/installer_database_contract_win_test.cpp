// The contract of installer_database_contract_test.cpp on the system's own databases, and what the
// adapter makes of answers that a sound system doesn't give.
#include <windows.h>

#include <msiquery.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <utility>

#include "platform/compound_file_win_test_support.h"
#include "platform/fake_functions_test_support.h"
#include "platform/file_bytes_test_support.h"
#include "platform/installer_database_test_support.h"
#include "platform/installer_database_writer_win.h"
#include "platform/system_installer.h"

namespace {

using Null = MemoryInstallerDatabases::Null;
using Stream = MemoryInstallerDatabases::Stream;
using Texts = std::vector<std::string>;

/// A folder of its own, with paths in 8 bits.
class PackageFolder {
 public:
  std::string file(const std::string& name) const {
    const std::u16string path = folder_.file(std::u16string(name.begin(), name.end()));
    return {path.begin(), path.end()};
  }
  std::string write_bytes(const std::string& name, const std::string& bytes) const {
    std::ofstream(file(name), std::ios::binary) << bytes;
    return file(name);
  }
  DatabaseWriter create(const std::string& name) const {
    return {file(name), write_bytes("stream", std::string("a\0b", 3))};
  }

 private:
  const TemporaryFolder folder_{u"zolvane-packages-"};
};

class SystemDatabaseBed final : public DatabaseBed {
 public:
  SystemDatabaseBed() : handles_(ORLO::live_handles()) {}
  ~SystemDatabaseBed() override { EXPECT_EQ(ORLO::live_handles(), handles_); }

  InstallerDatabases& databases() override { return *databases_; }
  std::string write(const std::vector<MemoryTable>& tables) override {
    const std::string name = std::to_string(++written_) + ".msi";
    DatabaseWriter writer = folder_.create(name);
    for (const MemoryTable& table : tables)
      writer.add(table);
    writer.finish();
    return folder_.file(name);
  }
  std::string missing() override { return folder_.file("none.msi"); }

 private:
  const int handles_;
  const std::unique_ptr<InstallerDatabases> databases_ = make_system_installer_databases();
  const PackageFolder folder_;
  int written_ = 0;
};

InstallerStatus open_status(const std::string& path) {
  std::unique_ptr<InstallerDatabase> database;
  const InstallerStatus status = make_system_installer_databases()->open(path.c_str(), database);
  EXPECT_EQ(database != nullptr, status == kInstallerSuccess);
  return status;
}

void write_small(const PackageFolder& folder, const std::string& name) {
  DatabaseWriter writer = folder.create(name);
  writer.add({"T", {{"Key", "i2"}, {"Text", "S0"}}, {{1, "x"}}});
  writer.finish();
}

/// What `Text` of the only row reads as, with `room`, in a database of this code page.
std::string text_in_code_page(const char* code_page, const std::u16string& text,
                              size_t room = 100) {
  const PackageFolder folder;
  DatabaseWriter writer = folder.create("a.msi");
  folder.write_bytes("page.idt", std::string("\r\n\r\n") + code_page + "\t_ForceCodepage\r\n");
  const std::string path = folder.file("page.idt");
  writer.import(path.substr(0, path.rfind('\\')), "page.idt");
  writer.add({"T", {{"Key", "i2"}, {"Text", "S0"}}, {{1, Null()}}});
  writer.set_text("UPDATE `T` SET `Text` = ? WHERE `Key` = 1", text);
  writer.finish();
  const auto databases = make_system_installer_databases();
  std::unique_ptr<InstallerDatabase> database;
  std::unique_ptr<InstallerView> view;
  if (databases->open(folder.file("a.msi").c_str(), database) != kInstallerSuccess)
    return "not opened";
  if (database->open_view("select `Text` from `T`", view) != kInstallerSuccess) return "no view";
  InstallerStatus end = 0;
  const Grid rows = rows_of(*view, end, room);
  return rows.size() == 1 ? rows[0][0] : "no row";
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, DatabaseContract,
                         ::testing::Values(DatabaseBedMaker{
                             "Own", [] { return std::make_unique<SystemDatabaseBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SystemDatabases, OpenNeitherAFolderNorWhatIsNoDatabase) {
  const PackageFolder folder;
  const std::string here = folder.file("");
  EXPECT_NE(open_status(here), kInstallerSuccess);
  EXPECT_NE(open_status(here.substr(0, here.size() - 1)), kInstallerSuccess);
  EXPECT_NE(open_status(folder.write_bytes("empty.msi", "")), kInstallerSuccess);
  EXPECT_NE(open_status(folder.write_bytes("text.msi", "no database")), kInstallerSuccess);
  EXPECT_NE(open_status(folder.write_bytes("x.msi", std::string(4096, 'x'))), kInstallerSuccess);
  EXPECT_NE(open_status("\\\\no-such-host\\share\\a.msi"), kInstallerSuccess);
  EXPECT_NE(open_status(std::string(5000, 'x')), kInstallerSuccess);
}

TEST(SystemDatabases, OpenHugeFilesByWhatLeadsToTheirTables) {
  constexpr uintmax_t kHuge = 500 << 20;
  const PackageFolder folder;
  write_small(folder, "a.msi");
  std::filesystem::resize_file(folder.file("a.msi"), kHuge);
  EXPECT_EQ(open_status(folder.file("a.msi")), kInstallerSuccess);
  std::filesystem::resize_file(folder.write_bytes("b.msi", "no database"), kHuge);
  EXPECT_NE(open_status(folder.file("b.msi")), kInstallerSuccess);
}

TEST(SystemDatabases, OpenNoFileThatAnotherHasLocked) {
  const PackageFolder folder;
  write_small(folder, "a.msi");
  const HANDLE held = CreateFileA(folder.file("a.msi").c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_NE(open_status(folder.file("a.msi")), kInstallerSuccess);
  CloseHandle(held);
  EXPECT_EQ(open_status(folder.file("a.msi")), kInstallerSuccess);
}

// It would be waited for, maybe for ever.
TEST(SystemDatabases, AskNoDeviceForAPackage) {
  const char* const name = R"(\\.\pipe\zolvane-silent-package)";
  const HANDLE pipe = CreateNamedPipeA(name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_WAIT,
                                       PIPE_UNLIMITED_INSTANCES, 0, 0, 0, nullptr);
  ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
  EXPECT_EQ(open_status(name), kInstallerOpenFailed);
  CloseHandle(pipe);
  EXPECT_EQ(open_status("NUL"), kInstallerOpenFailed);
}

TEST(SystemDatabases, LeaveTheFileAsItIs) {
  const PackageFolder folder;
  write_small(folder, "a.msi");
  const std::string before = file_bytes(folder.file("a.msi"));
  EXPECT_EQ(open_status(folder.file("a.msi")), kInstallerSuccess);
  EXPECT_EQ(file_bytes(folder.file("a.msi")), before);
}

namespace {

/// Asks for all that a database holds; the tables that answer.
size_t read_all(const std::string& path) {
  const auto databases = make_system_installer_databases();
  std::unique_ptr<InstallerDatabase> database;
  std::unique_ptr<InstallerView> view;
  size_t tables = 0;
  if (databases->open(path.c_str(), database) != kInstallerSuccess) return tables;
  for (const char* const name : {"T", "U", "_Tables", "_Columns", "_Streams", "_Storages"}) {
    const std::string query = "select * from `" + std::string(name) + "`";
    if (database->open_view(query.c_str(), view) != kInstallerSuccess) continue;
    column_texts(*view, ColumnInfo::names);
    InstallerStatus end = 0;
    rows_of(*view, end);
    ++tables;
  }
  return tables;
}

std::string package_bytes(const PackageFolder& folder) {
  DatabaseWriter writer = folder.create("whole.msi");
  MemoryTable table{"T", {{"Key", "i2"}, {"Text", "S0"}, {"Content", "V0"}}, {}};
  for (int32_t key = 1; key <= 50; ++key)
    table.rows.push_back({key, "text " + std::to_string(key), Stream()});
  writer.add(table);
  writer.add({"U", {{"Key", "i2"}}, {{1}}});
  writer.finish();
  return file_bytes(folder.file("whole.msi"));
}

}  // namespace

// Wine frees the file twice where it can't read a database's strings.
TEST(SystemDatabases, SurviveAFileThatIsCutOffAtEachSector) {
  const PackageFolder folder;
  const std::string whole = package_bytes(folder);
  EXPECT_EQ(read_all(folder.write_bytes("cut.msi", whole)), 6u);
  for (size_t size = 0; size < whole.size(); size += 512)
    read_all(folder.write_bytes("cut.msi", whole.substr(0, size)));
}

// Wine follows a directory that leads in a circle, and columns that aren't there.
TEST(SystemDatabases, SurviveAFileWithAnOddByteInEverySector) {
  const PackageFolder folder;
  const std::string whole = package_bytes(folder);
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::string bytes = whole;
    for (size_t at = random() % 512; at < bytes.size(); at += 512)
      bytes[at] = static_cast<char>(random());
    read_all(folder.write_bytes("odd.msi", bytes));
  }
}

// The process's code page is Windows-1252 wherever these run.
TEST(SystemDatabases, GiveTextInTheCodePageOfTheProcess) {
  for (const char* const code_page : {"1252", "65001"}) {
    EXPECT_EQ(text_in_code_page(code_page, u"\u00C4\u00F6\u00FC\u00DF"), "\xC4\xF6\xFC\xDF")
        << code_page;
  }
}

TEST(SystemDatabases, HaveAStandInForWhatTheCodePageLacks) {
  EXPECT_EQ(text_in_code_page("1251", u"\u0416a"), "?a");
  EXPECT_EQ(text_in_code_page("932", u"a\u65E5\u672C"), "a??");
  EXPECT_EQ(text_in_code_page("65001", u"\u65E5a\u0416"), "?a?");
}

TEST(SystemDatabases, CutTextOutsideAsciiWithinItsRoom) {
  EXPECT_EQ(text_in_code_page("65001", std::u16string(200, u'\u00E4'), 11),
            "<234>" + std::string(10, '\xE4'));
  EXPECT_EQ(text_in_code_page("932", std::u16string(200, u'\u65E5'), 11),
            "<234>" + std::string(10, '?'));
}

namespace {

// Answers of a damaged system. Each call that opens something counts up; each close is counted.
unsigned opened;
unsigned closed;
unsigned types_asked;

UINT WINAPI open_database(LPCSTR, LPCSTR persist, MSIHANDLE* handle) {
  *handle = persist == nullptr ? ++opened : 0;
  return ERROR_SUCCESS;
}
UINT WINAPI open_view(MSIHANDLE, LPCSTR, MSIHANDLE* handle) {
  *handle = ++opened;
  return ERROR_SUCCESS;
}
UINT WINAPI execute(MSIHANDLE, MSIHANDLE parameters) {
  return parameters == 0 ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}
UINT WINAPI refuse_execute(MSIHANDLE, MSIHANDLE) {
  return ERROR_FUNCTION_FAILED;
}
UINT WINAPI column_info(MSIHANDLE, MSICOLINFO kind, MSIHANDLE* handle) {
  if (kind == MSICOLINFO_TYPES) ++types_asked;
  *handle = ++opened;
  return ERROR_SUCCESS;
}
UINT WINAPI fetch(MSIHANDLE, MSIHANDLE* handle) {
  *handle = ++opened;
  return ERROR_SUCCESS;
}
UINT WINAPI two_fields(MSIHANDLE) {
  return 2;
}
UINT WINAPI no_field_count(MSIHANDLE) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return static_cast<UINT>(-1);
}
UINT WINAPI short_text(MSIHANDLE, UINT, LPSTR text, LPDWORD room) {
  if (*room > 2) std::memcpy(text, "ab", 3);
  *room = 2;
  return ERROR_SUCCESS;
}
UINT WINAPI endless_text(MSIHANDLE, UINT, LPSTR text, LPDWORD room) {
  std::memset(text, 'v', *room);
  return ERROR_MORE_DATA;
}
UINT WINAPI endless_success(MSIHANDLE, UINT, LPSTR text, LPDWORD room) {
  std::memset(text, 't', *room);
  return ERROR_SUCCESS;
}
UINT WINAPI silent_text(MSIHANDLE, UINT, LPSTR, LPDWORD room) {
  *room = 5000;
  return ERROR_SUCCESS;
}
UINT WINAPI silent_more(MSIHANDLE, UINT, LPSTR, LPDWORD) {
  return ERROR_MORE_DATA;
}
UINT WINAPI unended_more(MSIHANDLE, UINT, LPSTR text, LPDWORD) {
  text[0] = 'a';
  text[1] = 'b';
  return ERROR_MORE_DATA;
}
int WINAPI integer(MSIHANDLE, UINT field) {
  return static_cast<int>(field) * 10;
}
UINT WINAPI close_handle(MSIHANDLE) {
  ++closed;
  return ERROR_SUCCESS;
}

UINT WINAPI null_database(LPCSTR, LPCSTR, MSIHANDLE*) {
  return ERROR_SUCCESS;
}
UINT WINAPI null_view(MSIHANDLE, LPCSTR, MSIHANDLE*) {
  return ERROR_SUCCESS;
}
UINT WINAPI null_column_info(MSIHANDLE, MSICOLINFO, MSIHANDLE*) {
  return ERROR_SUCCESS;
}
UINT WINAPI null_fetch(MSIHANDLE, MSIHANDLE*) {
  return ERROR_SUCCESS;
}
UINT WINAPI failing_fetch(MSIHANDLE, MSIHANDLE* handle) {
  *handle = 77;
  return ERROR_FUNCTION_FAILED;
}

/// A module with the functions of a system that works, but for those that a test changes.
class OddFunctions final : public FakeFunctions {
 public:
  OddFunctions() {
    set("MsiOpenDatabaseA", &open_database);
    set("MsiDatabaseOpenViewA", &open_view);
    set("MsiViewExecute", &execute);
    set("MsiViewGetColumnInfo", &column_info);
    set("MsiViewFetch", &fetch);
    set("MsiRecordGetFieldCount", &two_fields);
    set("MsiRecordGetStringA", &short_text);
    set("MsiRecordGetInteger", &integer);
    set("MsiCloseHandle", &close_handle);
  }
};

class OddDatabases : public testing::Test {
 protected:
  OddDatabases() {
    opened = 0;
    closed = 0;
    types_asked = 0;
  }
  ~OddDatabases() override {
    record_.reset();
    view_.reset();
    database_.reset();
    EXPECT_EQ(closed, opened);
  }

  InstallerStatus open() { return databases_->open("a.msi", database_); }
  InstallerStatus open_view() {
    open();
    return database_->open_view("select * from `T`", view_);
  }
  void fetch_row() {
    ASSERT_EQ(open_view(), kInstallerSuccess);
    ASSERT_EQ(view_->fetch(record_), kInstallerSuccess);
  }
  std::string text(size_t room) {
    char buffer[16];
    std::memset(buffer, '#', sizeof buffer);
    const InstallerStatus status = record_->text(1, buffer, room);
    EXPECT_EQ(buffer[room], '#');
    return std::to_string(status) + " " + buffer;
  }

  OddFunctions functions_;
  const std::unique_ptr<InstallerDatabases> databases_ = make_installer_databases(functions_);
  std::unique_ptr<InstallerDatabase> database_;
  std::unique_ptr<InstallerView> view_;
  std::unique_ptr<InstallerRecord> record_;
};

}  // namespace

TEST_F(OddDatabases, AreLookedUpWithTheFirstOpeningAndOnlyOnce) {
  EXPECT_TRUE(functions_.asked().empty());
  open();
  EXPECT_EQ(functions_.asked().size(), functions_.names().size());
  open();
  EXPECT_EQ(functions_.asked().size(), functions_.names().size());
}

TEST_F(OddDatabases, OpenNothingWhereAFunctionIsMissing) {
  for (const std::string& name : functions_.names()) {
    OddFunctions functions;
    functions.remove(name);
    EXPECT_EQ(make_installer_databases(functions)->open("a.msi", database_), kInstallerOpenFailed)
        << name;
    EXPECT_EQ(database_, nullptr) << name;
  }
  EXPECT_EQ(opened, 0u);
}

TEST_F(OddDatabases, OpenOnlyToRead) {
  EXPECT_EQ(open(), kInstallerSuccess);
  EXPECT_EQ(opened, 1u);
}

TEST_F(OddDatabases, TakeNoHandleForSuccess) {
  functions_.set("MsiOpenDatabaseA", &null_database);
  EXPECT_NE(open(), kInstallerSuccess);
  EXPECT_EQ(database_, nullptr);
}

TEST_F(OddDatabases, TakeNoViewForSuccess) {
  functions_.set("MsiDatabaseOpenViewA", &null_view);
  EXPECT_NE(open_view(), kInstallerSuccess);
  EXPECT_EQ(view_, nullptr);
}

TEST_F(OddDatabases, TakeNoRecordForSuccess) {
  functions_.set("MsiViewGetColumnInfo", &null_column_info);
  functions_.set("MsiViewFetch", &null_fetch);
  ASSERT_EQ(open_view(), kInstallerSuccess);
  EXPECT_NE(view_->column_info(ColumnInfo::names, record_), kInstallerSuccess);
  EXPECT_EQ(record_, nullptr);
  EXPECT_NE(view_->fetch(record_), kInstallerSuccess);
  EXPECT_EQ(record_, nullptr);
}

TEST_F(OddDatabases, TakeNothingFromACallThatFails) {
  functions_.set("MsiViewFetch", &failing_fetch);
  ASSERT_EQ(open_view(), kInstallerSuccess);
  EXPECT_EQ(view_->fetch(record_), ERROR_FUNCTION_FAILED);
  EXPECT_EQ(record_, nullptr);
}

TEST_F(OddDatabases, CloseAViewThatCannotBeExecuted) {
  functions_.set("MsiViewExecute", &refuse_execute);
  EXPECT_EQ(open_view(), ERROR_FUNCTION_FAILED);
  EXPECT_EQ(view_, nullptr);
  EXPECT_EQ(opened, 2u);
  EXPECT_EQ(closed, 1u);
}

TEST_F(OddDatabases, GiveTheRecordOfBeforeBackAtTheNext) {
  fetch_row();
  const unsigned before = closed;
  ASSERT_EQ(view_->fetch(record_), kInstallerSuccess);
  EXPECT_EQ(closed, before + 1);
}

TEST_F(OddDatabases, TellThatFieldsCannotBeCounted) {
  functions_.set("MsiRecordGetFieldCount", &no_field_count);
  fetch_row();
  EXPECT_EQ(record_->field_count(), -1);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
  EXPECT_EQ(text(8), "0 ab");
}

TEST_F(OddDatabases, EndTextThatHasNoEnd) {
  functions_.set("MsiRecordGetStringA", &endless_text);
  fetch_row();
  // Their types read "v", too.
  EXPECT_EQ(text(8), "1804 ");
  view_->column_info(ColumnInfo::names, record_);
  EXPECT_EQ(text(8), "234 vvvvvvv");
  EXPECT_EQ(text(1), "234 ");
  functions_.set("MsiRecordGetStringA", &endless_success);
  const auto others = make_installer_databases(functions_);
  others->open("a.msi", database_);
  database_->open_view("select * from `T`", view_);
  view_->fetch(record_);
  EXPECT_EQ(text(8), "0 ttttttt");
}

TEST_F(OddDatabases, HaveEmptyTextWhereTheSystemWritesNone) {
  functions_.set("MsiRecordGetStringA", &silent_text);
  fetch_row();
  EXPECT_EQ(text(8), "0 ");
}

TEST_F(OddDatabases, HaveEmptyTextWhereTheSystemWritesNoneOfMore) {
  functions_.set("MsiRecordGetStringA", &silent_more);
  fetch_row();
  EXPECT_EQ(text(8), "234 ");
}

TEST_F(OddDatabases, EndTheBeginningOfATextWhereTheSystemDoesNot) {
  functions_.set("MsiRecordGetStringA", &unended_more);
  fetch_row();
  char buffer[] = "zzzzzzzz";
  EXPECT_EQ(record_->text(1, buffer, sizeof buffer), kInstallerMoreData);
  EXPECT_STREQ(buffer, "ab");
}

TEST_F(OddDatabases, AskForTheTypesWithTheFirstTextOnly) {
  fetch_row();
  EXPECT_EQ(record_->integer(2), 20);
  EXPECT_EQ(types_asked, 0u);
  EXPECT_EQ(text(8), "0 ab");
  EXPECT_EQ(types_asked, 1u);
  ASSERT_EQ(view_->fetch(record_), kInstallerSuccess);
  EXPECT_EQ(text(8), "0 ab");
  EXPECT_EQ(types_asked, 1u);
}

TEST_F(OddDatabases, GiveTextWithoutKnowingTheTypes) {
  functions_.set("MsiViewGetColumnInfo", &null_column_info);
  fetch_row();
  EXPECT_EQ(text(8), "0 ab");
}

TEST_F(OddDatabases, HaveTextInFieldsBesideTheColumns) {
  fetch_row();
  char buffer[8] = "";
  EXPECT_EQ(record_->text(0, buffer, sizeof buffer), kInstallerSuccess);
  EXPECT_EQ(record_->text(3, buffer, sizeof buffer), kInstallerSuccess);
  EXPECT_STREQ(buffer, "ab");
}
