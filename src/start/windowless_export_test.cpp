#include "start/windowless_export.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/reader_test_support.h"
#include "orlo/assertion.h"
#include "orlo/file_test_support.h"
#include "orlo/report.h"
#include "platform/memory_registry.h"
#include "platform/resource_ids.h"

namespace {

const std::string kUninstall =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const std::string kUninstall32 =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

/// A file in memory that takes what it gets from its end on.
class StreamFile final : public ORLO::RawFile {
 public:
  explicit StreamFile(MemoryFile& file) : file_(file) {}
  ORLO::Transfer read(uint64_t, char*, size_t) override { return {0, 1}; }
  ORLO::Transfer write(uint64_t, const char* block, size_t size) override {
    if (file_.error != 0) return {0, file_.error};
    file_.content.append(block, size);
    return {size, 0};
  }

 private:
  MemoryFile& file_;
};

/// Makes a wait end as if the program was told to quit.
int told_to_quit(ORLO::Waitable* const*, size_t, uint32_t) {
  return ORLO::kWaitQuit;
}

class WindowlessExport : public testing::Test {
 protected:
  void package(const std::string& name, const std::string& display_name = {},
               const std::string& below = kUninstall32) {
    registry_.create(below + name);
    if (display_name.empty()) return;
    registry_.set_text(below + name, "DisplayName",
                       ORLO::system_locale().widen(display_name.data(), display_name.size()));
  }

  std::string run(const std::string& name) { return run_over(registry_, name); }
  std::string run_over(Registry& registry, const std::string& name) {
    const UninstallReader::Services reader = system_.over(registry);
    const WindowlessServices services{
        .reader = reader,
        .text_of = [](unsigned id) { return String::formatted("<%u>", id); },
        .host_name = "desk",
        .program_version = "5.3",
        .write_workbook =
            [this](const ExportSheet& sheet, const String& file_name) {
              if (at_workbook) at_workbook();
              workbook_rows = static_cast<int>(sheet.rows.size());
              std::ofstream(file_name.c_str()) << "workbook";
              return workbook_status;
            },
        .open_output = [this]() -> std::unique_ptr<ORLO::RawFile> {
          if (!has_output) return nullptr;
          return std::make_unique<StreamFile>(output);
        },
        .most_workbook_rows = most_rows,
        .wait = wait};
    return export_without_window(String(name), services).c_str();
  }
  std::string run_to(const char* name) { return run(folder.path(name)); }

  /// What stands in the folder.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(folder.path("")))
      names.push_back(file.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  using Names = std::vector<std::string>;
  static size_t lines_of(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  TempFolder folder;
  MemoryRegistry registry_;
  MemorySystem system_;
  int workbook_rows = -1;
  int32_t workbook_status = 0;
  std::function<void()> at_workbook;
  bool has_output = true;
  MemoryFile output;
  size_t most_rows = kMostWorkbookRows;
  RefreshCycle::Wait wait = &ORLO::wait_with_messages;
};

TEST(ExportFormat, FollowsTheNamesEnd) {
  struct Case {
    const char* name;
    ExportFormat format;
  };
  const Case cases[] = {
      {"a.xls", ExportFormat::workbook},
      {"a.XLS", ExportFormat::workbook},
      {"a_xls", ExportFormat::workbook},
      {"xls", ExportFormat::csv},
      {"a.xlsx", ExportFormat::csv},
      {"a.csv", ExportFormat::csv},
      {"a.txt", ExportFormat::csv},
      {"a", ExportFormat::csv},
      {"a.json", ExportFormat::json_lines},
      {"a.Json", ExportFormat::json_lines},
      {"a.NDJSON", ExportFormat::json_lines},
      {".json", ExportFormat::json_lines},
      {"json", ExportFormat::csv},
      {"ajson", ExportFormat::csv},
      {"a.json.csv", ExportFormat::csv},
      {"-", ExportFormat::standard_output},
      {"--", ExportFormat::csv},
      {"-.json", ExportFormat::json_lines},
      {"a.xls.ndjson", ExportFormat::json_lines},
  };
  for (const Case& c : cases)
    EXPECT_EQ(export_format(c.name), c.format) << c.name;
}

TEST_F(WindowlessExport, WritesTheRowsOfTheListsDefaultAsCsv) {
  package("A", "Alpha");
  package("B");
  package("C", "Gamma");
  registry_.set_number(kUninstall32 + "C", "SystemComponent", 1);
  EXPECT_EQ(run_to("list.csv"), "");
  const std::string text = folder.content("list.csv");
  EXPECT_EQ(lines_of(text), 2u);
  EXPECT_TRUE(text.starts_with("<104>;<105>;"));
  EXPECT_NE(text.find("\nAlpha;A;HKLM Uninstall;"), std::string::npos);
  EXPECT_EQ(files(), Names{"list.csv"});
}

TEST_F(WindowlessExport, WritesEveryPackageAsJson) {
  package("A", "Alpha");
  package("B");
  package("C", "Gamma");
  registry_.set_number(kUninstall32 + "C", "SystemComponent", 1);
  EXPECT_EQ(run_to("list.json"), "");
  const std::string text = folder.content("list.json");
  EXPECT_EQ(lines_of(text), 3u);
  EXPECT_TRUE(text.starts_with("{\"hostName\":\"desk\",\"passTime\":\"20"));
  EXPECT_NE(text.find("\"programVersion\":\"5.3\",\"name\":\"C\""), std::string::npos);
  EXPECT_EQ(files(), Names{"list.json"});
}

TEST_F(WindowlessExport, MarksNothingAsNewOrChanged) {
  package("A", "Alpha");
  EXPECT_EQ(run_to("list.csv"), "");
  EXPECT_TRUE(folder.content("list.csv").ends_with(";;\n"));
}

TEST_F(WindowlessExport, MergesThePackagesOfBothViews) {
  package("A", "Alpha");
  package("A", "Alpha", kUninstall);
  package("B", "Beta", kUninstall);
  EXPECT_EQ(run_to("list.json"), "");
  EXPECT_EQ(lines_of(folder.content("list.json")), 2u);
}

TEST_F(WindowlessExport, WritesJsonToTheStandardOutput) {
  package("A", "Alpha");
  output.content = "before ";
  EXPECT_EQ(run("-"), "");
  EXPECT_TRUE(output.content.starts_with("before {\"hostName\""));
  EXPECT_EQ(lines_of(output.content), 1u);
}

TEST_F(WindowlessExport, FailsWithoutAStandardOutputOrWithAClosedOne) {
  package("A", "Alpha");
  has_output = false;
  EXPECT_EQ(run("-"), "can't write standard output: there is none");
  has_output = true;
  output.error = 232;
  EXPECT_EQ(run("-"), "can't write standard output: the reader is gone (error 232)");
  output.error = 233;
  EXPECT_EQ(run("-"), "can't write standard output: the reader is gone (error 233)");
  output.error = 112;
  EXPECT_EQ(run("-"), "can't write standard output: the disk is full (error 112)");
}

TEST_F(WindowlessExport, WritesAWorkbookThroughItsWriter) {
  package("A", "Alpha");
  package("B");
  EXPECT_EQ(run_to("list.xls"), "");
  EXPECT_EQ(workbook_rows, 1);
  EXPECT_EQ(folder.content("list.xls"), "workbook");
  EXPECT_EQ(files(), Names{"list.xls"});
}

TEST_F(WindowlessExport, AFailedWorkbookLeavesTheOldOne) {
  folder.make("list.xls", "old");
  workbook_status = static_cast<int32_t>(0x80030070);
  EXPECT_EQ(run_to("list.xls"), "can't write " + folder.path("list.xls") + ": error 0x80030070");
  EXPECT_EQ(folder.content("list.xls"), "old");
  EXPECT_EQ(files(), Names{"list.xls"});
}

TEST_F(WindowlessExport, AFailureWithoutATextIsAFailureToo) {
  for (const char* text : {"", " \r\n"}) {
    at_workbook = [text] { throw std::runtime_error(text); };
    EXPECT_EQ(run_to("list.xls"), "failed for an unknown reason");
    EXPECT_EQ(files(), Names{});
  }
}

TEST_F(WindowlessExport, FailuresOfTheSystemAreToldInEnglish) {
  struct Case {
    uint32_t code;
    const char* text;
  };
  const Case cases[] = {{53, "the server can't be reached (error 53)"},
                        {67, "the server has no such share (error 67)"},
                        {123, "that is no file name (error 123)"},
                        {99999, "error 99999"}};
  for (const Case& c : cases) {
    at_workbook = [&c] { throw ORLO::LWE(c.code); };
    EXPECT_EQ(run_to("list.xls"), "can't write " + folder.path("list.xls") + ": " + c.text);
  }
}

TEST_F(WindowlessExport, AReportWhileItWritesLeavesTheOldFile) {
  folder.make("list.xls", "old");
  at_workbook = [] { ORLO::check_assertion(false, "rows", "workbook.cpp", 7); };
  EXPECT_EQ(run_to("list.xls"), "can't write " + folder.path("list.xls") +
                                    ": Assertion failed: rows, file workbook.cpp, line 7");
  ORLO::forget_failed_assertions();
  EXPECT_EQ(folder.content("list.xls"), "old");
  EXPECT_EQ(files(), Names{"list.xls"});
}

TEST_F(WindowlessExport, ReplacesWhatIsThere) {
  package("A", "Alpha");
  folder.make("list.csv", std::string(100'000, 'x'));
  EXPECT_EQ(run_to("list.csv"), "");
  EXPECT_TRUE(folder.content("list.csv").starts_with("<104>;"));
  EXPECT_EQ(files(), Names{"list.csv"});
}

TEST_F(WindowlessExport, WithoutAFolderTellsSo) {
  const std::string told = run_to("none/list.csv");
  // With one of several codes.
  EXPECT_TRUE(told.starts_with("can't write " + folder.path("none/list.csv") +
                               ": there is no such folder (error "))
      << told;
  EXPECT_EQ(files(), Names{});
}

TEST_F(WindowlessExport, AFolderOfTheFilesNameStays) {
  std::filesystem::create_directories(folder.path("list.csv"));
  EXPECT_TRUE(run_to("list.csv").starts_with("can't write " + folder.path("list.csv") + ": "));
  EXPECT_EQ(files(), Names{"list.csv"});
}

TEST_F(WindowlessExport, MoreRowsThanAWorkbookHoldsAreToldAndWrittenNowhere) {
  EXPECT_EQ(most_rows, 65'535u);
  most_rows = 2;
  for (const char* name : {"A", "B", "C"})
    package(name, "x");
  EXPECT_EQ(run_to("list.xls"), "can't write " + folder.path("list.xls") +
                                    ": 3 packages, of which only 2 fit into a workbook; "
                                    "CSV and JSON have no limit");
  EXPECT_EQ(workbook_rows, -1);
  EXPECT_EQ(files(), Names{});
  EXPECT_EQ(run_to("list.csv"), "");
  EXPECT_EQ(lines_of(folder.content("list.csv")), 4u);
  most_rows = 3;
  EXPECT_EQ(run_to("list.xls"), "");
  EXPECT_EQ(workbook_rows, 3);
}

TEST_F(WindowlessExport, APassThatHasFailedWritesNothing) {
  package("A", "Alpha");
  folder.make("list.csv", "old");
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw ORLO::UserException("broken\r\nregistry\n");
  });
  EXPECT_EQ(run_over(hooked, folder.path("list.csv")), "broken  registry");
  EXPECT_EQ(folder.content("list.csv"), "old");
  EXPECT_EQ(run_over(hooked, "-"), "broken  registry");
  EXPECT_EQ(output.content, "");
}

TEST_F(WindowlessExport, ALostReaderWritesNothing) {
  package("A", "Alpha");
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw std::runtime_error("lost");
  });
  const std::string failure = run_over(hooked, folder.path("list.csv"));
  EXPECT_NE(failure.find("lost"), std::string::npos) << failure;
  EXPECT_EQ(lines_of(failure), 0u);
  EXPECT_EQ(files(), Names{});
}

TEST_F(WindowlessExport, WhatNobodyKnowsOfAFailureIsAFailureToo) {
  package("A", "Alpha");
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw 42;
  });
  EXPECT_NE(run_over(hooked, folder.path("list.csv")), "");
  EXPECT_EQ(files(), Names{});
}

TEST_F(WindowlessExport, ToldToQuitWritesNothing) {
  package("A", "Alpha");
  wait = &told_to_quit;
  EXPECT_EQ(run_to("list.csv"), "told to quit before all sources were read");
  EXPECT_EQ(files(), Names{});
}

TEST_F(WindowlessExport, WatchesNothing) {
  package("A", "Alpha");
  EXPECT_EQ(run_to("list.csv"), "");
  for (const std::string& call : registry_.calls())
    EXPECT_FALSE(call.starts_with("notify")) << call;
}

TEST_F(WindowlessExport, BringsTheReportsBackAtItsEnd) {
  int reports = 0;
  ORLO::set_report_sink([&](const String&, const String&) { ++reports; });
  EXPECT_EQ(run_to("list.csv"), "");
  ORLO::set_report_sink({});
  EXPECT_EQ(reports, 0);
}

TEST(InOneLine, HasBlanksForLineEnds) {
  EXPECT_STREQ(in_one_line("a\r\nb\tc\n").c_str(), "a  b c");
  EXPECT_STREQ(in_one_line("\n").c_str(), "");
  EXPECT_STREQ(in_one_line("\xE4 x").c_str(), "\xE4 x");
}

}  // namespace
