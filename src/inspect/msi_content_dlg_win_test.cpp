#include "inspect/msi_content_dlg.h"

#include <algorithm>
#include <stdexcept>

#include "inspect/dialog_bed_test_support.h"
#include "orlo/report_test_support.h"
#include "platform/memory_installer_database.h"

namespace {

using Database = MemoryInstallerDatabases;

/// Notes what cursor stands while a database is opened.
class WatchedDatabases final : public InstallerDatabases {
 public:
  explicit WatchedDatabases(InstallerDatabases& behind) : behind_(behind) {}
  InstallerStatus open(const char* path, std::unique_ptr<InstallerDatabase>& database) override {
    cursor = ORLO::current_thread_record().cursor;
    return behind_.open(path, database);
  }
  HCURSOR cursor = nullptr;

 private:
  InstallerDatabases& behind_;
};

class MSIContentDlgTest : public InspectionDlgTest {
 protected:
  Database::Table& add_table(const std::string& name, std::vector<Database::Column> columns) {
    return database.tables.emplace_back(Database::Table{name, std::move(columns), {}});
  }
  void show() {
    open<MSIContentDlg>(IDD_MSI_CONTENT, static_cast<InstallerDatabases&>(databases));
    EXPECT_EQ(databases.open_objects(), 0);
  }
  std::vector<std::string> tables() const {
    std::vector<std::string> found;
    const auto count = static_cast<WPARAM>(send(IDC_MSI_TABLES, LB_GETCOUNT));
    for (WPARAM i = 0; i < count; ++i) {
      std::string name(static_cast<size_t>(send(IDC_MSI_TABLES, LB_GETTEXTLEN, i)) + 1, '\0');
      send(IDC_MSI_TABLES, LB_GETTEXT, i, reinterpret_cast<LPARAM>(name.data()));
      found.emplace_back(name.c_str());
    }
    return found;
  }
  LRESULT chosen() const { return send(IDC_MSI_TABLES, LB_GETCURSEL); }
  /// As a click or an arrow key does.
  void choose(const std::string& table) const {
    const std::vector<std::string> all = tables();
    const auto index = std::find(all.begin(), all.end(), table) - all.begin();
    send(IDC_MSI_TABLES, LB_SETCURSEL, static_cast<WPARAM>(index));
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_MSI_TABLES, LBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(control(IDC_MSI_TABLES)));
  }
  std::vector<Heading> headings() const { return InspectionDlgTest::headings(IDC_MSI_ROWS); }
  std::vector<std::vector<std::string>> rows() const {
    return InspectionDlgTest::rows(IDC_MSI_ROWS);
  }
  static Heading text_column(const std::string& name) {
    return {name, column_width(), LVCFMT_LEFT};
  }
  static Heading number_column(const std::string& name) {
    return {name, column_width(), LVCFMT_RIGHT};
  }
  static int column_width() { return ORLO::scale_up(100, ORLO::screen_dpi()); }

  MemoryInstallerDatabases databases;
  Database::Database& database = databases.add("C:\\meadow.msi");
};

using Rows = std::vector<std::vector<std::string>>;

TEST_P(MSIContentDlgTest, IsNamedAfterThePathOfThePackage) {
  show();
  EXPECT_EQ(title(), is_german() ? "Zolvane - MSI-Inhalt: C:\\meadow.msi"
                                 : "Zolvane - MSI Content: C:\\meadow.msi");
}

TEST_P(MSIContentDlgTest, ListsTheTablesAndThoseThatEachDatabaseHas) {
  add_table("Zebra", {{"Id", "s72"}});
  add_table("Property", {{"Id", "s72"}});
  show();
  std::vector<std::string> found = tables();
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (std::vector<std::string>{"Property", "Zebra", "_Columns", "_Storages",
                                             "_Streams", "_Tables"}));
}

TEST_P(MSIContentDlgTest, ChoosesTheFirstEntryAndShowsTheFirstTableByBytes) {
  add_table("apple", {{"Lower", "s72"}});
  add_table("Zebra", {{"Upper", "s72"}});
  show();
  EXPECT_EQ(chosen(), 0);
  EXPECT_EQ(headings(), std::vector<Heading>{text_column("Upper")});
}

TEST_P(MSIContentDlgTest, ShowsColumnsInTheOrderOfTheDatabaseAndNumbersAtTheRight) {
  add_table("File", {{"Name", "s72"}, {"Attributes", "I2"}, {"Size", "i4"}, {"Beta", "J4"}})
      .rows = {{"one", 1, 20, -3}, {"two", Database::Null(), INT32_MAX, INT32_MIN + 1}};
  show();
  choose("File");
  EXPECT_EQ(headings(), (std::vector<Heading>{text_column("Name"), number_column("Attributes"),
                                              number_column("Size"), number_column("Beta")}));
  EXPECT_EQ(rows(), (Rows{{"one", "1", "20", "-3"}, {"two", "", "2147483647", "-2147483647"}}));
}

TEST_P(MSIContentDlgTest, ListsRowsInTheOrderOfTheirNumbersAsText) {
  auto& table = add_table("Twelve", {{"Id", "i2"}});
  for (int i = 1; i <= 12; ++i)
    table.rows.push_back({i});
  show();
  choose("Twelve");
  EXPECT_EQ(
      rows(),
      (Rows{
          {"1"}, {"10"}, {"11"}, {"12"}, {"2"}, {"3"}, {"4"}, {"5"}, {"6"}, {"7"}, {"8"}, {"9"}}));
}

TEST_P(MSIContentDlgTest, EmptyTableShowsItsColumnsAndNoRows) {
  add_table("Full", {{"Other", "s72"}}).rows = {{"x"}};
  add_table("Void", {{"Id", "s72"}});
  show();
  choose("Full");
  ASSERT_EQ(rows(), (Rows{{"x"}}));
  choose("Void");
  EXPECT_EQ(headings(), std::vector<Heading>{text_column("Id")});
  EXPECT_TRUE(rows().empty());
}

TEST_P(MSIContentDlgTest, TableWhoseNameNeedsQuotingIsShown) {
  add_table("Two words, and more", {{"select", "s72"}}).rows = {{"x"}};
  show();
  choose("Two words, and more");
  EXPECT_EQ(headings(), std::vector<Heading>{text_column("select")});
  EXPECT_EQ(rows(), (Rows{{"x"}}));
}

TEST_P(MSIContentDlgTest, StreamShowsThatItIsBinary) {
  add_table("Binary", {{"Name", "s72"}, {"Data", "v0"}}).rows = {{"icon", Database::Stream()}};
  show();
  choose("Binary");
  EXPECT_EQ(rows(), (Rows{{"icon", "<binary>"}}));
  choose("_Streams");
  EXPECT_EQ(headings().at(1).text, "Data");
  EXPECT_EQ(rows(), (Rows{{"Binary.icon", "<binary>"}}));
}

TEST_P(MSIContentDlgTest, TextOfOver1023CharactersShowsItsFirst1023) {
  add_table("Long", {{"Text", "s0"}}).rows = {{std::string(5000, 'x')}};
  show();
  choose("Long");
  EXPECT_EQ(rows(), (Rows{{std::string(1023, 'x')}}));
}

TEST_P(MSIContentDlgTest, ShowsTheWaitCursorWhileItReadsButNotOverTheReport) {
  WatchedDatabases watched(databases);
  databases.fail("open", kInstallerOpenFailed);
  ORLO::TestReports reports;
  reports.while_open = [] { EXPECT_EQ(cursor(), nullptr); };
  open<MSIContentDlg>(IDD_MSI_CONTENT, static_cast<InstallerDatabases&>(watched));
  EXPECT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(watched.cursor, wait_cursor());
  EXPECT_EQ(cursor(), nullptr);
}

TEST_P(MSIContentDlgTest, WithoutADatabaseReportsThatAndListsNothing) {
  package.packagePath = "C:\\absent.msi";
  ORLO::TestReports reports;
  show();
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_NE(reports.shown[0].text.find("C:\\absent.msi"), std::string::npos);
  EXPECT_TRUE(tables().empty());
  EXPECT_TRUE(headings().empty());
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(IsWindow(window));
}

/// Looks at the cursor while a database is opened, and fails as no installer does.
class ThrowingDatabases : public InstallerDatabases {
 public:
  HCURSOR cursor = nullptr;

  InstallerStatus open(const char*, std::unique_ptr<InstallerDatabase>&) override {
    cursor = GetCursor();
    throw std::length_error("much too long");
  }
};

TEST_P(MSIContentDlgTest, ReportsAnyFailureOnceNothingIsWaitedFor) {
  const HCURSOR arrow = LoadCursorA(nullptr, IDC_ARROW);
  SetCursor(arrow);
  HCURSOR during_report = nullptr;
  ORLO::TestReports reports;
  reports.while_open = [&] { during_report = GetCursor(); };
  ThrowingDatabases failing;
  open<MSIContentDlg>(IDD_MSI_CONTENT, static_cast<InstallerDatabases&>(failing));
  EXPECT_EQ(failing.cursor, LoadCursorA(nullptr, IDC_WAIT));
  EXPECT_EQ(during_report, arrow);
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_NE(reports.shown[0].text.find("much too long"), std::string::npos);
  EXPECT_TRUE(tables().empty());
  EXPECT_TRUE(IsWindow(window));
}

TEST_P(MSIContentDlgTest, ClosesTheDatabaseBeforeItReportsAFailure) {
  add_table("Alpha", {{"Id", "s72"}});
  databases.fail("open_view select `Id` from `Alpha`", 1627);
  ORLO::TestReports reports;
  int open_during_report = -1;
  reports.while_open = [&] { open_during_report = databases.open_objects(); };
  show();
  EXPECT_EQ(open_during_report, 0);
}

/// What a list view is told while this lives: how it is to be drawn, and of rows and columns.
class ToldList {
 public:
  explicit ToldList(HWND list) : list_(list) {
    told.clear();
    waiting = true;
    previous_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ToldList::hear)));
  }
  ~ToldList() { SetWindowLongPtrA(list_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous_)); }
  ToldList(const ToldList&) = delete;
  ToldList& operator=(const ToldList&) = delete;

  static inline std::vector<std::string> told;
  /// Whether each of these found the wait cursor.
  static inline bool waiting = true;

 private:
  static LRESULT CALLBACK hear(HWND list, UINT message, WPARAM wparam, LPARAM lparam) {
    const bool drawing = message == WM_SETREDRAW;
    const bool emptied = message == LVM_DELETEALLITEMS;
    const bool filled = message == LVM_INSERTITEMA;
    if (drawing) told.push_back(wparam != 0 ? "drawn" : "frozen");
    if (emptied) told.push_back("emptied");
    if (filled) told.push_back("filled");
    if (drawing || emptied || filled) waiting &= GetCursor() == LoadCursorA(nullptr, IDC_WAIT);
    return CallWindowProcA(previous_, list, message, wparam, lparam);
  }

  static inline WNDPROC previous_ = nullptr;
  const HWND list_;
};

TEST_P(MSIContentDlgTest, FillsTheRowsUndrawnAndUnderTheWaitCursor) {
  add_table("Alpha", {{"Id", "s72"}}).rows = {{"a"}, {"b"}};
  show();
  SetCursor(LoadCursorA(nullptr, IDC_ARROW));
  const ToldList list(control(IDC_MSI_ROWS));
  choose("Alpha");
  EXPECT_EQ(list.told,
            (std::vector<std::string>{"frozen", "emptied", "filled", "filled", "drawn"}));
  EXPECT_TRUE(list.waiting);
  EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_ARROW));
}

TEST_P(MSIContentDlgTest, ShowsWhatWasReadBeforeAFailure) {
  add_table("Alpha", {{"Id", "s72"}}).rows = {{"a"}};
  add_table("Beta", {{"Id", "s72"}}).rows = {{"b"}};
  databases.fail("open_view select `Id` from `Beta`", 1627);
  ORLO::TestReports reports;
  show();
  EXPECT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(tables(), (std::vector<std::string>{"Alpha", "Beta"}));
  EXPECT_EQ(rows(), (Rows{{"a"}}));
  choose("Beta");
  EXPECT_TRUE(rows().empty());
}

TEST_P(MSIContentDlgTest, IsLargerThanItsTemplateAndNeverSmaller) {
  show();
  EXPECT_EQ(growth(), scaled(400, 300));
  resize(10, 10);
  EXPECT_EQ(growth(), scaled(0, 0));
}

TEST_P(MSIContentDlgTest, ListOfTablesKeepsItsWidthAndTheRowsTakeTheRest) {
  show();
  const RECT tables_before = place_of(IDC_MSI_TABLES);
  const RECT rows_before = place_of(IDC_MSI_ROWS);
  const SIZE frame = frame_of(window);
  resize(frame.cx + 50, frame.cy + 30);
  const RECT tables_after = place_of(IDC_MSI_TABLES);
  const RECT rows_after = place_of(IDC_MSI_ROWS);
  EXPECT_EQ(tables_after.right, tables_before.right);
  EXPECT_EQ(tables_after.bottom, tables_before.bottom + 30);
  EXPECT_EQ(rows_after.left, rows_before.left);
  EXPECT_EQ(rows_after.right, rows_before.right + 50);
  EXPECT_EQ(rows_after.bottom, rows_before.bottom + 30);
}

TEST_P(MSIContentDlgTest, AnotherTableIsShownOnlyOnceItIsChosen) {
  add_table("Alpha", {{"Id", "s72"}}).rows = {{"a"}};
  add_table("Beta", {{"Id", "s72"}}).rows = {{"b"}};
  show();
  choose("Beta");
  choose("Alpha");
  const LRESULT alpha = chosen();
  // Selected, and nothing said of it.
  send(IDC_MSI_TABLES, LB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>("Beta"));
  ASSERT_NE(chosen(), alpha);
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_MSI_TABLES, LBN_DBLCLK), 0);
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_MSI_ROWS, LBN_SELCHANGE), 0);
  EXPECT_EQ(rows(), (Rows{{"a"}}));
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_MSI_TABLES, LBN_SELCHANGE), 0);
  EXPECT_EQ(rows(), (Rows{{"b"}}));
}

TEST_P(MSIContentDlgTest, WithoutAChosenTableTheRowsStay) {
  add_table("Alpha", {{"Id", "s72"}}).rows = {{"a"}};
  show();
  choose("Alpha");
  send(IDC_MSI_TABLES, LB_SETCURSEL, static_cast<WPARAM>(-1));
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_MSI_TABLES, LBN_SELCHANGE), 0);
  EXPECT_EQ(rows(), (Rows{{"a"}}));
}

TEST_P(MSIContentDlgTest, HasTheIconsOfTheProgram) {
  show();
  EXPECT_NE(SendMessageA(window, WM_GETICON, ICON_BIG, 0), 0);
  EXPECT_NE(SendMessageA(window, WM_GETICON, ICON_SMALL, 0), 0);
}

TEST_P(MSIContentDlgTest, SelectsWholeRows) {
  show();
  EXPECT_EQ(send(IDC_MSI_ROWS, LVM_GETEXTENDEDLISTVIEWSTYLE), LRESULT{LVS_EX_FULLROWSELECT});
}

TEST_P(MSIContentDlgTest, EscapeAndEnterCloseIt) {
  for (const WPARAM key : {WPARAM{IDCANCEL}, WPARAM{IDOK}}) {
    show();
    SendMessageA(window, WM_COMMAND, key, 0);
    EXPECT_FALSE(IsWindow(window));
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, MSIContentDlgTest, testing::Values(kEnglish, kGerman),
                         name_of_language);

}  // namespace
