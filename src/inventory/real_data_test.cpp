// Uninstall keys that real systems left behind. They are no part of the project; the folder that
// holds them is named by the environment variable ZOLVANE_REALDATA.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/entry.h"
#include "inventory/uninstall_source.h"
#include "orlo/datetime.h"
#include "orlo/fixed_clock.h"
#include "orlo/locale.h"
#include "platform/file_bytes_test_support.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"
#include "platform/reg_text.h"
#include "platform/utf16.h"

namespace {

namespace fs = std::filesystem;
using Field = PackageColumn;

constexpr char kVariable[] = "ZOLVANE_REALDATA";
constexpr ORLO::FileTime kNoDate = 0xF000000000000000;

struct ValueColumn {
  const char* value;
  Field column;
};

constexpr ValueColumn kTexts[] = {
    {"DisplayName", Field::displayName},
    {"DisplayVersion", Field::displayVersion},
    {"ParentDisplayName", Field::parentName},
    {"DisplayIcon", Field::displayIcon},
    {"InstallLocation", Field::installLocation},
    {"UninstallString", Field::uninstallCmd},
    {"ModifyPath", Field::modifyCmd},
    {"Comments", Field::comments},
    {"Publisher", Field::publisher},
    {"Contact", Field::contact},
    {"HelpLink", Field::helpURL},
    {"HelpTelephone", Field::helpPhone},
    {"URLInfoAbout", Field::aboutURL},
    {"URLUpdateInfo", Field::updateURL},
};

constexpr ValueColumn kNumbers[] = {
    {"WindowsInstaller", Field::MSI}, {"NoRemove", Field::noRemove},
    {"NoModify", Field::noModify},    {"SystemComponent", Field::systemComponent},
    {"EstimatedSize", Field::size},
};

constexpr Field kWrittenNumbers[] = {Field::noRemove, Field::noModify, Field::systemComponent,
                                     Field::size,     Field::MSI,      Field::OK,
                                     Field::is64Bit,  Field::HKEY_ROOT};

/// The folder as the variable names it; a path of the host is reached through the drive Z.
fs::path real_data(const char* below) {
  const fs::path named = fs::path(std::getenv(kVariable)) / below;
  return fs::exists(named) ? named : fs::path("Z:") / named;
}

std::vector<fs::path> reg_files() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(real_data("uninstall"))) {
    if (entry.path().extension() == ".reg") files.push_back(entry.path());
  }
  return files;
}

std::string narrow(std::u16string_view text) {
  return ORLO::system_locale().narrow(text.data(), text.size());
}

bool fits_code_page(std::u16string_view text) {
  const std::string narrowed = narrow(text);
  return ORLO::system_locale().widen(narrowed.data(), narrowed.size()) == text;
}

/// An Uninstall key of a text, and the names of its subkeys that the code page holds.
struct Place {
  std::string path;
  std::set<std::string> names;
};

std::vector<Place> places_of(const RegText& text) {
  constexpr std::u16string_view kEnd = u"\\UNINSTALL";
  std::map<std::u16string, Place> places;
  for (const RegStatement& statement : text.statements) {
    if (statement.kind != RegStatement::Kind::key) continue;
    const std::u16string upper = upcase(statement.name);
    const size_t end = upper.find(kEnd);
    if (end == upper.npos) continue;
    const size_t length = end + kEnd.size();
    Place& place = places[upper.substr(0, length)];
    place.path = narrow(statement.name.substr(0, length));
    if (statement.name.size() <= length) continue;
    std::u16string name = statement.name.substr(length + 1);
    name.resize(std::min(name.find(u'\\'), name.size()));
    if (fits_code_page(name)) place.names.insert(narrow(name));
  }
  std::vector<Place> result;
  result.reserve(places.size());
  for (auto& [upper, place] : places)
    result.push_back(std::move(place));
  return result;
}

/// One file's keys, with the write times of its twin if there is one.
class RealRegistry {
 public:
  explicit RealRegistry(const fs::path& file) : text_(parse_reg_text(file_bytes(file))) {
    EXPECT_TRUE(registry_.load(file_bytes(file))) << registry_.error();
    for (const RegStatement& statement : text_.statements) {
      if (statement.kind != RegStatement::Kind::key) continue;
      registry_.set_last_write(utf8_from_utf16(statement.name), kNoDate);
    }
    fs::path twin = file;
    if (fs::exists(twin.replace_extension(".lastwrite.txt"))) take_write_times(twin);
  }

  MemoryRegistry& registry() { return registry_; }
  std::vector<Place> places() const { return places_of(text_); }
  bool has_write_times() const { return has_write_times_; }

  RegistryKey open(const std::string& path) {
    const std::map<std::string, int32_t> roots = {{"HKEY_LOCAL_MACHINE", kLocalMachine},
                                                  {"HKEY_CURRENT_USER", kCurrentUser},
                                                  {"HKEY_USERS", kLocalMachine + 1}};
    const size_t end = path.find('\\');
    RegistryKey key;
    registry_.open(roots.at(path.substr(0, end)), path.substr(end + 1).c_str(),
                   kKeyRead | kKeyWow64_64, key);
    return key;
  }

 private:
  /// "[key]", then "; LastWrite=... filetime=0x..." for it.
  void take_write_times(const fs::path& twin) {
    std::istringstream lines(file_bytes(twin));
    std::string key;
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line.starts_with('[')) key = line.substr(1, line.find_last_of(']') - 1);
      const size_t time = line.find("filetime=0x");
      if (time == line.npos || key.empty()) continue;
      registry_.set_last_write(key, std::strtoull(line.c_str() + time + 9, nullptr, 16));
      has_write_times_ = true;
    }
  }

  const RegText text_;
  MemoryRegistry registry_;
  bool has_write_times_ = false;
};

struct Reading {
  int32_t root;
  bool is64Bit;
  std::vector<Row> rows;
  std::set<RowKey> unseen;
};

Reading read_place(RealRegistry& real, const Place& place, const ORLO::Clock& clock) {
  const bool machine = place.path.starts_with("HKEY_LOCAL_MACHINE");
  const bool is32 = upcase(utf16_from_utf8(place.path)).find(u"WOW6432NODE") != std::string::npos;
  Reading reading{machine ? kLocalMachine : kCurrentUser, machine && !is32, {}, {}};
  MemoryFiles files;
  UninstallSource source(real.registry(), files, clock);
  const RegistryKey key = real.open(place.path);
  EXPECT_TRUE(key);
  source.readUninstallKey(reading.root, key, reading.unseen, reading.is64Bit,
                          [&reading](const Row& row) { reading.rows.push_back(row); });
  return reading;
}

std::string text_of(const Row& row, Field column) {
  return cell(row, column).text.c_str();
}

/// As one plain query gives it.
int32_t number_of(const RegistryKey& key, const char* name, int32_t fallback) {
  uint32_t type = 0;
  uint32_t size = 4;
  int32_t number = 0;
  return key.registry()->value(key, name, type, &number, size) == kRegSuccess ? number : fallback;
}

void expect_clean_cells(const Row& row) {
  ASSERT_EQ(row.cells.size(), kPackageColumns);
  for (const Cell& cell : row.cells)
    EXPECT_EQ(std::strlen(cell.text.c_str()), cell.text.length());
  for (const Field column : kWrittenNumbers)
    EXPECT_EQ(text_of(row, column), std::to_string(cell(row, column).integer()));
  EXPECT_EQ(std::set<int32_t>({0, 1, -1, -2}).count(cell(row, Field::OK).integer()), 1u);
  EXPECT_EQ(text_of(row, Field::uninstallDate), "31.12.2099");
  for (const Field never : {Field::features, Field::patches, Field::packagePath, Field::user,
                            Field::changed, Field::frequency, Field::lastUseDate}) {
    EXPECT_EQ(text_of(row, never), "");
  }
}

void expect_key(const Row& row, const RegistryKey& subkey, const Reading& reading) {
  const std::string name = text_of(row, Field::name);
  const size_t end = name.find("}.");
  const bool split = name.starts_with('{') && end != name.npos;
  const std::string key_name = split ? name.substr(end + 2) : name;
  EXPECT_EQ(text_of(row, Field::keyName), key_name);
  const std::string parent = get_registry_text(subkey, "ParentKeyName").c_str();
  EXPECT_EQ(text_of(row, Field::parent), split ? name.substr(1, end - 1) : parent);
  const RowKey expected{{String(std::to_string(reading.root)), String(key_name)}};
  EXPECT_TRUE(packageSchema().key_of(row) == expected);
  EXPECT_EQ(cell(row, Field::is64Bit).integer(), reading.is64Bit ? 1 : 0);
}

void expect_values(const Row& row, const RegistryKey& subkey) {
  for (const ValueColumn& text : kTexts)
    EXPECT_EQ(text_of(row, text.column), get_registry_text(subkey, text.value).c_str());
  for (const ValueColumn& number : kNumbers) {
    const int32_t fallback = number.column == Field::size ? -1 : 0;
    EXPECT_EQ(cell(row, number.column).integer(), number_of(subkey, number.value, fallback))
        << number.value;
  }
}

/// Where no write time stands in, the date is that of the value, if the value is one.
void expect_date(const Row& row, const RegistryKey& subkey, const ORLO::Clock& clock) {
  const String raw = get_registry_text(subkey, "InstallDate");
  DateTime date;
  date.parse(raw.c_str(), clock);
  const String expected = date.empty() ? raw : date.display(clock);
  EXPECT_EQ(text_of(row, Field::installDate), expected.c_str()) << raw.c_str();
}

TEST(RealUninstallKeys, BecomeOneRowForEachSubkeyWithWhatItSays) {
  if (std::getenv(kVariable) == nullptr) {
    GTEST_SKIP() << kVariable << " names no folder of real data";
  }
  const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  size_t rows = 0;
  for (const fs::path& file : reg_files()) {
    SCOPED_TRACE(file.string());
    RealRegistry real(file);
    for (const Place& place : real.places()) {
      SCOPED_TRACE(place.path);
      const Reading reading = read_place(real, place, clock);
      std::set<std::string> names;
      for (const Row& row : reading.rows) {
        SCOPED_TRACE(text_of(row, Field::name));
        names.insert(text_of(row, Field::name));
        const RegistryKey subkey = real.open(place.path + "\\" + text_of(row, Field::name));
        ASSERT_TRUE(subkey);
        expect_clean_cells(row);
        expect_key(row, subkey, reading);
        expect_values(row, subkey);
        if (!real.has_write_times()) expect_date(row, subkey, clock);
        const UninstallEntry entry = UninstallEntry::fromRow(row, clock);
        EXPECT_EQ(entry.OK, cell(row, Field::OK).integer());
      }
      EXPECT_EQ(names, place.names);
      EXPECT_EQ(reading.rows.size(), place.names.size());
      rows += reading.rows.size();
    }
    EXPECT_EQ(real.registry().open_keys(), 0u);
  }
  EXPECT_GT(rows, 0u);
}

TEST(RealUninstallKeys, ShowTheDatesThatValueAndWriteTimeMakeTogether) {
  if (std::getenv(kVariable) == nullptr) {
    GTEST_SKIP() << kVariable << " names no folder of real data";
  }
  // Read in winter, so that write times are shown an hour after UTC whatever their season.
  const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  const struct {
    const char* file;
    const char* key;
    ORLO::SystemTime shown;
  } rows[] = {
      // The value names another day than the write time.
      {"plaso_NTUSER-WIN7.DAT.Uninstall.reg", "Google Chrome", {2011, 8, 0, 15}},
      // The same day: 07:13 UTC.
      {"regipy_NTUSER_with_winscp.DAT.Uninstall.reg", "GitHubDesktop", {2022, 4, 0, 28, 8, 13}},
      // No value.
      {"regipy_NTUSER_with_winscp.DAT.Uninstall.reg", "ZoomUMX", {2022, 2, 0, 28, 10, 5}},
      {"regipy_NTUSER_with_winscp.DAT.Uninstall.reg",
       "{042365c3-6595-5b1c-9db7-bb6ec2e7f0db}",
       {2022, 2, 0, 14, 14, 51}},
      {"regipy_NTUSER_with_winscp.DAT.Uninstall.reg",
       "{c60fd5ac-367d-4e3a-a975-f157502ac30a}",
       {2022, 2, 0, 14, 15, 31}},
  };
  for (const auto& expected : rows) {
    SCOPED_TRACE(expected.key);
    RealRegistry real(real_data("uninstall") / expected.file);
    ASSERT_EQ(real.places().size(), 1u);
    DateTime shown;
    shown.time = expected.shown;
    size_t found = 0;
    for (const Row& row : read_place(real, real.places().front(), clock).rows) {
      if (text_of(row, Field::name) != expected.key) continue;
      EXPECT_EQ(text_of(row, Field::installDate), shown.display(clock).c_str());
      ++found;
    }
    EXPECT_EQ(found, 1u);
  }
}

}  // namespace
