// What real update services wrote, against a reading by regular expressions. The data are no part
// of the project; the folder that holds them is named by the environment variable ZOLVANE_REALDATA.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "inventory/update_log_test_support.h"
#include "orlo/file_test_support.h"
#include "orlo/locale.h"
#include "platform/file_bytes_test_support.h"
#include "platform/utf16.h"

namespace {

namespace fs = std::filesystem;
using Field = PackageColumn;

constexpr char kVariable[] = "ZOLVANE_REALDATA";

fs::path real_log(const char* name) {
  const fs::path named = fs::path(std::getenv(kVariable)) / "log" / name;
  return fs::exists(named) ? named : fs::path("Z:") / named;
}

struct Reading {
  std::string title;
  std::string name;
  std::string version;
  std::string date;
};

/// Title in the code page.
Reading read_title(const std::string& title) {
  static const std::regex number("KB[0-9]*");
  static const std::regex version("KB[0-9]+ \\(?(?:Definition )?([^)]*)[^]*");
  Reading reading{title, title, "", ""};
  std::smatch found;
  if (!std::regex_search(title, found, number)) return reading;
  reading.name = found[0];
  const std::string rest = title.substr(static_cast<size_t>(found.position()));
  if (std::regex_match(rest, found, version)) reading.version = found[1];
  return reading;
}

uint16_t number(const std::string& digits) {
  return static_cast<uint16_t>(std::stoi(digits));
}

std::string shown_date(const std::smatch& fields) {
  DateTime date;
  date.time = {number(fields[1]), number(fields[2]), 0, number(fields[3]), number(fields[4]),
               number(fields[5]), number(fields[6])};
  return date.display(update_log_clock()).c_str();
}

std::string in_code_page(const std::string& utf8) {
  const std::u16string wide = utf16_from_utf8(utf8);
  return ORLO::system_locale().narrow(wide.data(), wide.size());
}

std::vector<Reading> read_by_expression(const std::string& content) {
  static const std::regex success(
      "^(\\d{4})-(\\d\\d)-(\\d\\d)\\t(\\d\\d):(\\d\\d):(\\d\\d):\\d{3}\\t.*Installation "
      "Successful: "
      "Windows successfully installed the following update: (.*)$");
  std::vector<Reading> readings;
  std::istringstream lines(content);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::smatch found;
    if (!std::regex_match(line, found, success)) continue;
    readings.push_back(read_title(in_code_page(found[7])));
    readings.back().date = shown_date(found);
  }
  return readings;
}

void expect_rows(const std::vector<Row>& rows, const std::vector<Reading>& readings) {
  ASSERT_EQ(rows.size(), readings.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    const auto text = [&row = rows[i]](Field column) {
      return std::string(cell(row, column).text.c_str());
    };
    EXPECT_EQ(text(Field::displayName), readings[i].title);
    EXPECT_EQ(text(Field::name), readings[i].name);
    EXPECT_EQ(text(Field::displayVersion), readings[i].version);
    EXPECT_EQ(text(Field::installDate), readings[i].date);
    EXPECT_EQ(text(Field::source), "Windows Update");
  }
}

TEST(RealUpdateLog, GivesARowForEachOfItsSuccesses) {
  if (std::getenv(kVariable) == nullptr) {
    GTEST_SKIP() << kVariable << " names no folder of real data";
  }
  const fs::path log = real_log("RECONSTRUCTED_xp_236_WindowsUpdate.log");
  const auto readings = read_by_expression(file_bytes(log));
  EXPECT_EQ(readings.size(), 236u);
  expect_rows(read_update_log(log.string()), readings);
}

TEST(RealUpdateTitles, AreSplitInTheFrameOfALine) {
  if (std::getenv(kVariable) == nullptr) {
    GTEST_SKIP() << kVariable << " names no folder of real data";
  }
  static const std::regex record("[^\\t]*\\t(\\S+) (\\d\\d:\\d\\d:\\d\\d)[^\\t]*\\t([^\\t]*)\\t.*");
  std::istringstream table(file_bytes(real_log("event19_titles.tsv")));
  std::string content;
  std::set<std::string> titles;
  for (std::string line; std::getline(table, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::smatch found;
    if (!std::regex_match(line, found, record)) continue;
    const std::string moment = found[1].str() + "\t" + found[2].str() + ":000";
    content.append(success_line(found[3], moment)).append("\r\n");
    titles.insert(found[3]);
  }
  EXPECT_GT(titles.size(), 100u);
  const TempFolder folder;
  const auto readings = read_by_expression(content);
  EXPECT_EQ(readings.size(), 489u);
  expect_rows(read_update_log(folder.make("log", content)), readings);
}

}  // namespace
