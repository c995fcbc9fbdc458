// The main window's icons: those that a thread loads for the list, and that of the pane.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "orlo/file_test_support.h"
#include "view/list_icons.h"
#include "view/uninstall_dlg_test_support.h"

namespace {

TEST_F(ChoosingUninstallDlgTest, ThePaneShowsTheIconOfTheChosenPackageOnly) {
  set("Birch", "DisplayIcon", own_icon().c_str());
  refresh_by_change();
  EXPECT_EQ(pane_icon(), nullptr);
  choose(0);
  EXPECT_NE(pane_icon(), nullptr);
  choose(1);
  EXPECT_EQ(pane_icon(), nullptr);
}

TEST_F(ChoosingUninstallDlgTest, ASearchThatFindsNothingTakesThePanesIcon) {
  set("Birch", "DisplayIcon", own_icon().c_str());
  refresh_by_change();
  choose(0);
  SetDlgItemTextA(window, IDC_SEARCH, "nothing of that kind");
  EXPECT_EQ(pane_icon(), nullptr);
}

TEST_F(ChoosingUninstallDlgTest, ThePanesFormerIconGoesWithEachChoice) {
  set("Birch", "DisplayIcon", own_icon().c_str());
  refresh_by_change();
  choose(0);
  // The list's icons have been loaded once a pass has ended.
  pump_until([&] { return image_of(0) > 0; });
  const int before = ORLO::OwnedIcon::live();
  for (int i = 0; i < 250; ++i) {
    choose(1);
    EXPECT_EQ(ORLO::OwnedIcon::live(), before - 1);
    choose(0);
    ASSERT_EQ(ORLO::OwnedIcon::live(), before);
  }
}

TEST_F(ChoosingUninstallDlgTest, TheListShowsIconsWithoutBeingAsked) {
  set("Birch", "DisplayIcon", own_icon().c_str());
  refresh_by_change();
  EXPECT_TRUE(pump_until([&] { return image_of(0) == 1; }));
  EXPECT_EQ(image_of(1), 0);
  const auto images =
      reinterpret_cast<HIMAGELIST>(SendMessageA(list, LVM_GETIMAGELIST, LVSIL_SMALL, 0));
  EXPECT_EQ(ImageList_GetImageCount(images), 2);
}

TEST_F(ChoosingUninstallDlgTest, AChoiceExtractsThePanesIconExactlyOnce) {
  set("Birch", "DisplayIcon", own_icon().c_str());
  set("Alder", "DisplayIcon", own_icon().c_str());
  refresh_by_change();
  ASSERT_TRUE(pump_until([&] { return image_of(0) > 0; }));
  EXPECT_EQ(icons.larges, 0);
  choose(0);
  EXPECT_EQ(icons.larges, 1);
  choose(1);
  EXPECT_EQ(icons.larges, 2);
  refresh_by_change();
  EXPECT_EQ(icons.larges, 2);
}

bool is_icon(HICON icon) {
  ICONINFO info = {};
  if (GetIconInfo(icon, &info) == FALSE) return false;
  const ORLO::OwnedBitmap color(info.hbmColor);
  const ORLO::OwnedBitmap mask(info.hbmMask);
  return true;
}

TEST_F(ChoosingUninstallDlgTest, ThePanesFormerIconLastsUntilThePaneShowsTheNext) {
  set("Birch", "DisplayIcon", own_icon().c_str());
  set("Alder", "DisplayIcon", own_icon().c_str());
  refresh_by_change();
  choose(0);
  const HICON former = pane_icon();
  ASSERT_TRUE(is_icon(former));
  int changes = 0;
  {
    const MessageWatch watch(GetDlgItem(window, IDC_PANE_ICON), [&](UINT message, WPARAM) {
      if (message != STM_SETICON) return;
      ++changes;
      EXPECT_TRUE(is_icon(former));
    });
    choose(1);
  }
  EXPECT_EQ(changes, 1);
  EXPECT_FALSE(is_icon(former));
  EXPECT_TRUE(is_icon(pane_icon()));
}

TEST_F(ChoosingUninstallDlgTest, AnIconThatComesChoosesNothing) {
  choose(0);
  ASSERT_TRUE(enabled(IDC_UNINSTALL));
  set("Alder", "UninstallString", u"C:\\un.exe /alder");
  set("Alder", "DisplayIcon", own_icon().c_str());
  registry.remove(kUninstall + "Birch");
  refresh_by_change();
  // The mark may stand on a line that has taken the place of the chosen one.
  mark(0);
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
  ASSERT_TRUE(pump_until([&] { return image_of(0) > 0; }));
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
}

TEST_F(ChoosingUninstallDlgTest, ANoticeOfAnImageAloneChangesNeitherChoiceNorButtons) {
  choose(0);
  mark(1);
  NMLISTVIEW change = {};
  change.iItem = 1;
  change.uChanged = LVIF_IMAGE;
  notify(change, change.hdr, list, LVN_ITEMCHANGED);
  EXPECT_TRUE(enabled(IDC_UNINSTALL));
  command(ID_OPEN_FOLDER);
  EXPECT_EQ(shell.starts().size(), 1u);
}

TEST_F(ChoosingUninstallDlgTest, AnyOtherNoticeChoosesTheMarkedLineAndLeavesThePane) {
  for (const UINT changed :
       {UINT{LVIF_TEXT}, UINT{LVIF_STATE}, UINT{LVIF_STATE | LVIF_IMAGE}, UINT{LVIF_PARAM}}) {
    SCOPED_TRACE(changed);
    choose(0);
    ASSERT_TRUE(enabled(IDC_UNINSTALL));
    mark(1);
    NMLISTVIEW change = {};
    change.uChanged = changed;
    change.uNewState = LVIS_SELECTED;
    notify(change, change.hdr, list, LVN_ITEMCHANGED);
    EXPECT_FALSE(enabled(IDC_UNINSTALL));
    command(ID_OPEN_FOLDER);
    EXPECT_TRUE(shell.starts().empty());
    EXPECT_STREQ(text_of(IDC_NAME).c_str(), "Birch \x80 Editor");
    choose(1);
  }
}

/// What the user does while the icon thread has the list.
class BusyUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  BusyUninstallDlgTest() { hold_icon_thread(); }
};

TEST_F(BusyUninstallDlgTest, ASearchThatIsTypedIsKeptWhateverIsClickedMeanwhile) {
  const LaterScript script([this] {
    EXPECT_TRUE(count_is("2 / 2 packages"));
    choose(1);
    choose(0);
    icons.gate.open();
  });
  SetDlgItemTextA(window, IDC_SEARCH, "bir");
  EXPECT_STREQ(text_of(IDC_SEARCH).c_str(), "bir");
  EXPECT_TRUE(count_is("1 / 2 packages"));
}

TEST_F(BusyUninstallDlgTest, ChangesThatWaitFollowInTheirOrderAndTheLastOneStands) {
  const LaterScript script([this] {
    SetDlgItemTextA(window, IDC_SEARCH, "nothing of that kind");
    SendDlgItemMessageA(window, IDC_TYPE, CB_SETCURSEL, 2, 0);
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_TYPE, CBN_SELCHANGE), 0);
    click_header(HDN_ITEMCLICKA, kNameColumn);
    click_header(HDN_ITEMCLICKA, kNameColumn + 1);
    click_header(HDN_ITEMCLICKA, kNameColumn + 1);
    SendDlgItemMessageA(window, IDC_TYPE, CB_SETCURSEL, 0, 0);
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_TYPE, CBN_SELCHANGE), 0);
    SetDlgItemTextA(window, IDC_SEARCH, "ald");
    // Nothing has been done so far.
    EXPECT_TRUE(count_is("2 / 2 packages"));
    EXPECT_EQ(header_format(kNameColumn), 0);
    icons.gate.open();
  });
  SetDlgItemTextA(window, IDC_SEARCH, "bir");
  EXPECT_TRUE(count_is("1 / 2 packages"));
  EXPECT_EQ(id_at(0), 1);
  EXPECT_EQ(header_format(kNameColumn), 0);
  EXPECT_EQ(header_format(kNameColumn + 1), HDF_SORTUP);
  // The next ones find nothing that waits.
  click_header(HDN_ITEMCLICKA, kNameColumn);
  EXPECT_EQ(header_format(kNameColumn), HDF_SORTDOWN);
}

TEST_F(BusyUninstallDlgTest, KeysThatAreTypedMeanwhileDoNotNest) {
  constexpr int kKeys = 300;
  for (int i = 0; i < kKeys; ++i)
    PostMessageA(GetDlgItem(window, IDC_SEARCH), WM_CHAR, 'b', 0);
  const LaterScript script([this] { icons.gate.open(); });
  const MessageWatch watch(window, {});
  SetDlgItemTextA(window, IDC_SEARCH, "b");
  EXPECT_LT(MessageWatch::deepest, 10);
  EXPECT_EQ(text_of(IDC_SEARCH).length(), size_t{kKeys + 1});
  EXPECT_TRUE(count_is("0 / 2 packages"));
}

TEST_F(BusyUninstallDlgTest, RefreshesFromScratchAgainAndAgainAreOneAndDoNotNest) {
  constexpr int kKeys = 100;
  for (int i = 0; i < kKeys; ++i)
    PostMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_REFRESH, 1), 0);
  int keys = 0;
  const LaterScript script([&] {
    keys = -keys;
    icons.gate.open();
  });
  const MessageWatch watch(window, [&](UINT message, WPARAM wparam) {
    if (message == WM_COMMAND && LOWORD(wparam) == IDC_REFRESH) ++keys;
  });
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_REFRESH, 1), 0);
  EXPECT_EQ(keys, -(kKeys + 1)) << "all had come when the list became free";
  EXPECT_LT(MessageWatch::deepest, 10);
  EXPECT_TRUE(count_is("2 / 2 packages"));
  // Each forgetting makes for new ids.
  EXPECT_EQ(id_at(0) + id_at(1), 3 + 4);
}

/// With files that the icons are kept in.
class KeepingUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  KeepingUninstallDlgTest() : ChoosingUninstallDlgTest(Unopened()) {
    set("Birch", "DisplayIcon", own_icon().c_str());
    UninstallPara para;
    para.cfgPath = folder_.path("config.cfg");
    para.histPath = folder_.path("history.dat");
    para.imageListPath = folder_.path("icons.dat");
    para.imagePathsPath = folder_.path("icons.txt");
    open(para);
    EXPECT_TRUE(pass_comes());
  }
  bool pass_comes() const {
    return pump_until([this] { return std::filesystem::exists(paths()); });
  }
  std::string paths() const { return folder_.path("icons.txt"); }
  /// Returns when the passes that have been asked for so far are over, with no file left.
  void forget_passes() const {
    EXPECT_TRUE(pump_until([this] {
      std::error_code busy;
      std::filesystem::remove(paths(), busy);
      ORLO::sleep_with_messages(150);
      return !std::filesystem::exists(paths());
    }));
  }

  const TempFolder folder_;
};

TEST_F(KeepingUninstallDlgTest, EachChangeOfTheFilterHasIconsLoaded) {
  const auto tell = [this](int control, int code) {
    forget_passes();
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(control, code),
                 reinterpret_cast<LPARAM>(GetDlgItem(window, control)));
    return pass_comes();
  };
  EXPECT_TRUE(tell(IDC_SEARCH, EN_CHANGE));
  EXPECT_TRUE(tell(IDC_TYPE, CBN_SELCHANGE));
  EXPECT_TRUE(tell(IDC_MICROSOFT, BN_CLICKED));
}

TEST_F(KeepingUninstallDlgTest, EachRefreshHasIconsLoaded) {
  forget_passes();
  refresh_by_change();
  EXPECT_TRUE(pass_comes());
  forget_passes();
  command(IDC_REFRESH);
  EXPECT_TRUE(pass_comes());
}

/// Is closed while it reads for the first time.
class ShortLivedUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  ShortLivedUninstallDlgTest() : ChoosingUninstallDlgTest(Unopened()) {}
  void open_and(const std::function<void()>& act) {
    UninstallPara para;
    para.noPersist = true;
    reading.shut();
    const LaterScript script([&] {
      act();
      reading.open();
    });
    open(para);
  }
};

TEST_F(ShortLivedUninstallDlgTest, ARefreshHasIconsLoaded) {
  open_and([] {});
  EXPECT_TRUE(pump_until([] { return languages == 2; }));
}

TEST_F(ShortLivedUninstallDlgTest, NoIconThreadStartsOnceTheWindowIsEnding) {
  open_and([this] {
    SendMessageA(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(window));
    SetDlgItemTextA(window, IDC_SEARCH, "bir");
  });
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(languages, 1) << "the reader's";
}

enum class Place { extraction, append, set_image };
enum class End { cancel, close, destroy, quit };

/// Ends with the icon thread in the middle of a pass.
class EndedUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  EndedUninstallDlgTest() : ChoosingUninstallDlgTest(Unopened()) {
    UninstallPara para;
    para.noPersist = true;
    open(para);
  }
  /// The icon thread waits for an answer.
  static void await_call() {
    for (int i = 0; i < 4000 && !has_call(); ++i)
      Sleep(5);
    ASSERT_TRUE(has_call());
  }
  static bool has_call() { return (HIWORD(GetQueueStatus(QS_SENDMESSAGE)) & QS_SENDMESSAGE) != 0; }
  static void answer_call() {
    MSG message;
    PeekMessageA(&message, nullptr, WM_APP + 100, WM_APP + 100, PM_NOREMOVE);
  }
  /// The thread has appended an image and waits for the answer to the message that shows it.
  /// The look for messages that answers one call may answer the next, too.
  void await_second_call() const {
    int calls = 0;
    const MessageWatch watch(window, [&](UINT message, WPARAM) {
      if (message == ListIcons::kCall) ++calls;
    });
    for (size_t i = 0; i < kTries && calls % 2 == 0; ++i) {
      answer_call();
      await_call();
    }
    EXPECT_EQ(calls % 2, 1);
    EXPECT_EQ(images(), calls / 2 + 2);
  }
  void bring_to(Place place) {
    // Not earlier, as a pass for them would be held in the place of the one below. Each is the same
    // icon under another name.
    for (size_t i = 1; i <= kTries; ++i)
      set("Cedar" + std::to_string(i), "DisplayIcon",
          (own_icon() + std::u16string(i, u'0')).c_str());
    hold_icon_thread();
    if (place == Place::extraction) return;
    icons.gate.open();
    await_call();
    EXPECT_EQ(images(), 1);
    if (place == Place::append) return;
    await_second_call();
  }
  int images() const {
    return ImageList_GetImageCount(
        reinterpret_cast<HIMAGELIST>(SendMessageA(list, LVM_GETIMAGELIST, LVSIL_SMALL, 0)));
  }
  void end(End end) const {
    switch (end) {
      case End::cancel:
        command(IDCANCEL);
        break;
      case End::close:
        SendMessageA(window, WM_CLOSE, 0, 0);
        break;
      case End::quit:
        PostQuitMessage(7);
        [[fallthrough]];
      case End::destroy:
        DestroyWindow(window);
        break;
    }
  }

  static constexpr size_t kTries = 30;
  const int handles_ = ORLO::live_handles();
};

struct WayToEnd {
  Place place;
  End end;
};

class EndsOfUninstallDlgTest : public EndedUninstallDlgTest,
                               public testing::WithParamInterface<WayToEnd> {};

TEST_P(EndsOfUninstallDlgTest, ComesSoonAndLeavesNoHandle) {
  bring_to(GetParam().place);
  std::thread opener([this] {
    Sleep(100);
    icons.gate.open();
  });
  const ULONGLONG start = GetTickCount64();
  end(GetParam().end);
  EXPECT_LT(GetTickCount64() - start, 5000u);
  EXPECT_FALSE(IsWindow(window));
  opener.join();
  MSG message = {};
  const bool quit = PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE;
  EXPECT_EQ(quit, GetParam().end == End::quit);
  EXPECT_EQ(ORLO::live_handles(), handles_);
}

constexpr WayToEnd kWays[] = {
    {Place::extraction, End::cancel},  {Place::extraction, End::close},
    {Place::extraction, End::destroy}, {Place::extraction, End::quit},
    {Place::append, End::cancel},      {Place::append, End::close},
    {Place::append, End::destroy},     {Place::append, End::quit},
    {Place::set_image, End::cancel},   {Place::set_image, End::close},
    {Place::set_image, End::destroy},  {Place::set_image, End::quit},
};

std::string way_name(const testing::TestParamInfo<WayToEnd>& way) {
  static constexpr const char* kPlaces[] = {"InAnExtraction", "InAnAppend", "InAnImagesMessage"};
  static constexpr const char* kEnds[] = {"ByCancel", "ByClose", "ByDestruction", "ByQuit"};
  return std::string(kPlaces[static_cast<int>(way.param.place)]) +
         kEnds[static_cast<int>(way.param.end)];
}

INSTANTIATE_TEST_SUITE_P(All, EndsOfUninstallDlgTest, testing::ValuesIn(kWays), &way_name);

}  // namespace
