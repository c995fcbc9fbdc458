#include "export/list_export.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "actions/actions_test_support.h"
#include "orlo/exception.h"
#include "orlo/file_test_support.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"
#include "platform/memory_storage.h"
#include "platform/resource_ids.h"

namespace {

constexpr size_t kTooMany = 65536;

String text_of(unsigned id) {
  return id == IDS_TOO_MANY_ROWS ? String("no more than %d") : String::formatted("#%u", id);
}

UninstallEntry named(const char* name) {
  UninstallEntry entry;
  entry.displayName = name;
  return entry;
}

class FakeList : public ExportedList {
 public:
  bool visit_packages(const Visitor& visitor) override {
    if (on_visit) on_visit();
    if (!can_be_had) return false;
    for (const UninstallEntry& entry : entries)
      visitor(entry);
    return true;
  }
  ExportFilter export_filter() const override { return filter; }

  std::vector<UninstallEntry> entries{named("Birch"), named("Alder")};
  ExportFilter filter;
  bool can_be_had = true;
  std::function<void()> on_visit;
};

class ListExportTest : public testing::Test {
 protected:
  ~ListExportTest() override { EXPECT_EQ(frame_.cursors, 0); }

  std::string in_folder(const char* name) const { return folder_.path(name); }
  void export_to(const std::string& name) {
    name_ = name.c_str();
    export_.exportList();
  }
  size_t lines_of(const char* name) const {
    const std::string text = folder_.content(name);
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  }
  bool folder_is_empty() const { return std::filesystem::is_empty(folder_.path("")); }

  const TempFolder folder_;
  MemoryFiles files_;
  MemoryShell shell_;
  MemoryRegistry registry_{MemoryRegistry::View::native};
  RecordingFrame frame_;
  MemoryStorage storage_;
  FakeList list_;
  String name_;
  std::optional<ORLO::SaveFileDialog> asked_;
  ListExport export_{{{files_, shell_, registry_, frame_},
                      storage_,
                      list_,
                      [this](const ORLO::SaveFileDialog& dialog) {
                        asked_ = dialog;
                        EXPECT_EQ(frame_.cursors, 0);
                        return name_;
                      },
                      &text_of}};
};

TEST_F(ListExportTest, AsksForANameInADialogOfTheSystem) {
  export_.exportList();
  ASSERT_TRUE(asked_.has_value());
  EXPECT_STREQ(asked_->title.c_str(), "#126");
  EXPECT_STREQ(asked_->file_name.c_str(), "Software.xls");
  EXPECT_STREQ(asked_->default_extension.c_str(), ".xls");
  EXPECT_STREQ(asked_->filter.c_str(), "Excel Sheet (*.xls)|*.xls|CSV File (*.csv)|*.csv|");
  EXPECT_EQ(asked_->flags, 0x8080Au);
}

TEST_F(ListExportTest, CancelDoesNothing) {
  export_to("");
  EXPECT_TRUE(frame_.boxes.empty());
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_TRUE(folder_is_empty());
}

TEST_F(ListExportTest, AListThatCannotBeHadEndsSilently) {
  list_.can_be_had = false;
  export_to(in_folder("list.csv"));
  EXPECT_TRUE(frame_.boxes.empty());
  EXPECT_TRUE(folder_is_empty());
}

TEST_F(ListExportTest, TheWaitCursorIsShownWhileThePackagesAreGathered) {
  int cursors = 0;
  list_.on_visit = [&] { cursors = frame_.cursors; };
  export_to(in_folder("list.csv"));
  EXPECT_EQ(cursors, 1);
}

TEST_F(ListExportTest, ANameThatDoesNotEndInXlsIsATextFileThatNobodyOpens) {
  for (const char* name : {"list.csv", "list.txt", "list"}) {
    export_to(in_folder(name));
    EXPECT_EQ(lines_of(name), 3u) << name;
  }
  EXPECT_TRUE(shell_.starts().empty());
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(ListExportTest, AWorkbookIsOpenedWithItsViewer) {
  const char* const path = "C:\\My lists\\Software.XLS";
  files_.add_file(path);
  export_to(path);
  EXPECT_NE(storage_.file(u"C:\\My lists\\Software.XLS"), nullptr);
  ASSERT_EQ(shell_.starts().size(), 1u);
  const MemoryShell::Start& start = shell_.starts()[0];
  EXPECT_EQ(start.file, path);
  EXPECT_EQ(start.arguments, "");
  EXPECT_EQ(start.verb, "open");
  EXPECT_EQ(start.show, 1);
  EXPECT_EQ(start.owner, frame_.owner());
  EXPECT_FALSE(start.waits);
  EXPECT_TRUE(frame_.boxes.empty());
}

TEST_F(ListExportTest, AWorkbookThatCannotBeWrittenIsToldAndNotOpened) {
  constexpr StorageStatus kDenied = static_cast<StorageStatus>(0x80030005);
  storage_.fail(MemoryStorage::Operation::create, kDenied);
  export_to("C:\\Software.xls");
  ASSERT_EQ(frame_.boxes.size(), 1u);
  const String text = ORLO::system_error_text(static_cast<uint32_t>(kDenied));
  EXPECT_EQ(frame_.boxes[0], std::string("warn #127: ") + text.c_str());
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(ListExportTest, ATextFileThatCannotBeWrittenIsAnException) {
  EXPECT_THROW(export_to(in_folder("nowhere/list.csv")), ORLO::LWE);
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(ListExportTest, TheFilterOfTheListDecidesAboutNamelessPackagesAndComponents) {
  list_.entries.push_back(named(""));
  UninstallEntry component = named("Component");
  component.systemComponent = 1;
  list_.entries.push_back(component);
  export_to(in_folder("plain.csv"));
  list_.filter = {true, true};
  export_to(in_folder("all.csv"));
  EXPECT_EQ(lines_of("plain.csv"), 3u);
  EXPECT_EQ(lines_of("all.csv"), 5u);
}

TEST_F(ListExportTest, NoRowsGiveAFileWithTheTitlesAlone) {
  list_.entries.clear();
  export_to(in_folder("empty.csv"));
  EXPECT_EQ(lines_of("empty.csv"), 1u);
}

TEST_F(ListExportTest, MoreRowsThanAWorkbookHoldsAreToldAndNothingIsWritten) {
  list_.entries.assign(kTooMany, named("Birch"));
  export_to("C:\\Software.xls");
  EXPECT_EQ(frame_.boxes, std::vector<std::string>{"warn #102: no more than 65535"});
  EXPECT_EQ(storage_.file(u"C:\\Software.xls"), nullptr);
  EXPECT_TRUE(shell_.starts().empty());
  export_to(in_folder("all.csv"));
  EXPECT_EQ(lines_of("all.csv"), kTooMany + 1);
}

TEST_F(ListExportTest, AsManyRowsAsAWorkbookHoldsAreWritten) {
  list_.entries.assign(kTooMany - 1, named("Birch"));
  export_to("C:\\Software.xls");
  EXPECT_TRUE(frame_.boxes.empty());
  EXPECT_NE(storage_.file(u"C:\\Software.xls"), nullptr);
}

}  // namespace
