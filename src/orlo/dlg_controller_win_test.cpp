#include "orlo/dlg_controller.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "orlo/dialog_mixins.h"
#include "orlo/dialog_test_support.h"
#include "orlo/exception.h"
#include "orlo/message_loop.h"
#include "orlo/message_wait.h"
#include "orlo/report.h"
#include "orlo/subclass_controller.h"
#include "orlo/thread_record.h"
#include "orlo/wait_cursor.h"

namespace ORLO {
namespace {

constexpr WORD kEditId = 101;
constexpr WORD kButtonId = 102;
constexpr UINT kAct = WM_APP + 1;

/// Collects the reports of its scope instead of showing boxes.
class CollectedReports {
 public:
  CollectedReports() {
    set_report_sink([this](const String&, const String& text) { texts.push_back(text.c_str()); });
  }
  ~CollectedReports() { set_report_sink({}); }
  std::vector<std::string> texts;
};

TestTemplate simple_plan() {
  TestTemplate plan(120, 60);
  plan.add(kEditId, TestTemplate::kEdit, "", {5, 5, 60, 17}, WS_TABSTOP);
  plan.add(kButtonId, TestTemplate::kButton, "&Press", {5, 25, 60, 40}, WS_TABSTOP);
  return plan;
}

using Script = std::function<void(DlgController&)>;

/// Posts itself a message at the start and runs its script when that arrives.
class ScriptedDlg : public ResizeController<OwnerDrawController<DlgController>> {
 public:
  using Base = ResizeController<OwnerDrawController<DlgController>>;
  ScriptedDlg(HWND window, Script script, std::unique_ptr<ParaStruct> parameters = nullptr)
      : Base(window, std::move(parameters)), script_(std::move(script)) {}

  LRESULT Init(HWND focus) override {
    PostMessageA(_hwnd, kAct, 0, 0);
    return Base::Init(focus);
  }
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == kAct) {
      script_(*this);
      return 1;
    }
    return Base::WndProc(message, wparam, lparam);
  }

 private:
  const Script script_;
};

INT_PTR run_modal(const Dialog::Factory& factory) {
  TestTemplate plan = simple_plan();
  return Dialog::DoModal(GetModuleHandleA(nullptr), plan.get(), nullptr, factory);
}

INT_PTR run_script(const Script& script) {
  return run_modal([&](HWND window) { return std::make_unique<ScriptedDlg>(window, script); });
}

void send_command(HWND window, WORD id) {
  SendMessageA(window, WM_COMMAND, id, 0);
}

TEST(Dialog, GivesBackWhatItWasEndedWith) {
  EXPECT_EQ(run_script([](DlgController& dialog) { dialog.EndDialog(42); }), 42);
}

TEST(Dialog, OkEndsWithOneAndCancelWithTwo) {
  EXPECT_EQ(run_script([](DlgController& dialog) { send_command(dialog.window(), IDOK); }), 1);
  EXPECT_EQ(run_script([](DlgController& dialog) { send_command(dialog.window(), IDCANCEL); }), 2);
}

TEST(Dialog, FrameCommandCloses) {
  EXPECT_EQ(run_script([](DlgController& dialog) { send_command(dialog.window(), 0x8001); }), 2);
}

TEST(Dialog, ControllerDiesWithTheWindow) {
  int alive = 0;
  struct Counted : ScriptedDlg {
    Counted(HWND window, int& alive_count)
        : ScriptedDlg(window, [](DlgController& dialog) { dialog.EndDialog(1); }),
          count(alive_count) {
      ++count;
    }
    ~Counted() override { --count; }
    int& count;
  };
  int seen = -1;
  run_modal([&](HWND window) {
    auto made = std::make_unique<Counted>(window, alive);
    seen = alive;
    return made;
  });
  EXPECT_EQ(seen, 1);
  EXPECT_EQ(alive, 0);
}

TEST(Dialog, FailureInTheFactoryIsReportedAndEndsTheStart) {
  const CollectedReports reports;
  const INT_PTR result = run_modal(
      [](HWND) -> std::unique_ptr<DlgController> { throw UserException("no list control"); });
  EXPECT_EQ(result, -1);
  ASSERT_EQ(reports.texts.size(), 1u);
  EXPECT_NE(reports.texts[0].find("no list control"), std::string::npos);
}

TEST(Dialog, FactoryThatGivesNothingEndsTheStartSilently) {
  const CollectedReports reports;
  EXPECT_EQ(run_modal([](HWND) { return std::unique_ptr<DlgController>(); }), -1);
  EXPECT_TRUE(reports.texts.empty());
}

TEST(Dialog, HandlersFailuresAreReportedAndTheDialogGoesOn) {
  const CollectedReports reports;
  int step = 0;
  EXPECT_EQ(run_script([&](DlgController& dialog) {
              PostMessageA(dialog.window(), kAct, 0, 0);
              switch (step++) {
                case 0:
                  throw UserException("first");
                case 1:
                  throw std::runtime_error("second");
                case 2:
                  throw 3;
                default:
                  dialog.EndDialog(9);
              }
            }),
            9);
  ASSERT_EQ(reports.texts.size(), 3u);
  EXPECT_NE(reports.texts[0].find("first"), std::string::npos);
  EXPECT_EQ(reports.texts[1], "An exception occured:\nsecond\n");
}

TEST(Dialog, MessageWhoseHandlerFailedIsNotHandledByTheSystemToo) {
  const CollectedReports reports;
  struct FailsToClose : ScriptedDlg {
    using ScriptedDlg::ScriptedDlg;
    LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
      if (message == WM_CLOSE) throw UserException("not yet");
      return ScriptedDlg::WndProc(message, wparam, lparam);
    }
  };
  const auto script = [step = 0](DlgController& dialog) mutable {
    if (step++ == 0) {
      // The system's own handling posts the command that cancels.
      EXPECT_EQ(SendMessageA(dialog.window(), WM_CLOSE, 0, 0), 0);
      PostMessageA(dialog.window(), kAct, 0, 0);
    } else {
      dialog.EndDialog(5);
    }
  };
  EXPECT_EQ(run_modal([&](HWND window) { return std::make_unique<FailsToClose>(window, script); }),
            5);
  EXPECT_EQ(reports.texts.size(), 1u);
}

struct CountingPara : ParaStruct {
  explicit CountingPara(std::vector<bool>& updates) : updates_(updates) {}
  void updateControls() override {
    updates_.push_back(partial);
    if (partial && fail_when_saving) throw UserException("bad number");
  }
  bool fail_when_saving = false;
  std::vector<bool>& updates_;
};

INT_PTR run_with(std::unique_ptr<CountingPara> para, Script script) {
  return run_modal([&](HWND window) {
    return std::make_unique<ScriptedDlg>(window, std::move(script), std::move(para));
  });
}

TEST(DlgController, LoadsTheControlsAtTheStartAndStoresThemOnOk) {
  std::vector<bool> updates;
  EXPECT_EQ(run_with(std::make_unique<CountingPara>(updates),
                     [](DlgController& dialog) { send_command(dialog.window(), IDOK); }),
            1);
  EXPECT_EQ(updates, (std::vector<bool>{false, true}));
}

TEST(DlgController, FailureWhileStoringKeepsTheDialogOpen) {
  const CollectedReports reports;
  std::vector<bool> updates;
  auto para = std::make_unique<CountingPara>(updates);
  para->fail_when_saving = true;
  EXPECT_EQ(run_with(std::move(para),
                     [](DlgController& dialog) {
                       send_command(dialog.window(), IDOK);
                       // Still open: only this ends it.
                       dialog.EndDialog(77);
                     }),
            77);
  ASSERT_EQ(reports.texts.size(), 1u);
  EXPECT_NE(reports.texts[0].find("control update"), std::string::npos);
  EXPECT_NE(reports.texts[0].find("bad number"), std::string::npos);
}

TEST(DlgController, RefusalToCloseKeepsTheDialogOpen) {
  struct Refusing : ScriptedDlg {
    using ScriptedDlg::ScriptedDlg;
    bool CanClose(bool save) override { return !save; }
  };
  const auto script = [](DlgController& dialog) {
    send_command(dialog.window(), IDOK);
    dialog.EndDialog(78);
  };
  EXPECT_EQ(run_modal([&](HWND window) { return std::make_unique<Refusing>(window, script); }), 78);
}

TEST(DlgController, DialogWhoseControlsCannotBeFilledNeverOpens) {
  const CollectedReports reports;
  struct Unfillable : ScriptedDlg {
    Unfillable(HWND window, bool fails)
        : ScriptedDlg(window, [](DlgController& dialog) { dialog.EndDialog(1); }), fails_(fails) {}
    bool CanClose(bool) override {
      if (fails_) throw UserException("nothing to show");
      return false;
    }
    const bool fails_;
  };
  for (const bool fails : {false, true}) {
    SCOPED_TRACE(fails);
    EXPECT_EQ(run_modal([&](HWND window) { return std::make_unique<Unfillable>(window, fails); }),
              -1);
  }
  EXPECT_EQ(reports.texts.size(), 1u);
}

TEST(DlgController, ExitFunctionGetsTheParametersOnOkOnly) {
  for (const WORD command : {WORD{IDOK}, WORD{IDCANCEL}}) {
    SCOPED_TRACE(command);
    std::vector<bool> updates;
    int calls = 0;
    run_with(std::make_unique<CountingPara>(updates), [&](DlgController& dialog) {
      dialog.exit_function = [&](ParaStruct&) { ++calls; };
      send_command(dialog.window(), command);
    });
    EXPECT_EQ(calls, command == IDOK ? 1 : 0);
  }
}

TEST(DlgController, TellsItsIdentity) {
  LRESULT identity = 0;
  DlgController* found = nullptr;
  DlgController* self = nullptr;
  DlgController* of_child = nullptr;
  Controller* as_any_kind = nullptr;
  run_script([&](DlgController& dialog) {
    as_any_kind = controller_of(dialog.window());
    self = &dialog;
    identity = SendMessageA(dialog.window(), kMsgIdentity, 0, 0);
    found = dialog_controller(dialog.window());
    of_child = dialog_controller(GetDlgItem(dialog.window(), kEditId));
    dialog.EndDialog(1);
  });
  EXPECT_EQ(identity, 0x53C10008);
  EXPECT_EQ(found, self);
  EXPECT_EQ(as_any_kind, self);
  EXPECT_EQ(of_child, nullptr);
}

TEST(DlgController, ModelessDialogMayEndItselfInsideAHandler) {
  TestTemplate plan = simple_plan();
  bool destroyed = false;
  bool destroyed_in_handler = true;
  struct Marked : ScriptedDlg {
    Marked(HWND window, Script script, bool& flag)
        : ScriptedDlg(window, std::move(script)), gone(flag) {}
    ~Marked() override { gone = true; }
    bool& gone;
  };
  const auto script = [&](DlgController& dialog) {
    const HWND own = dialog.window();
    dialog.EndDialog(1);
    EXPECT_FALSE(IsWindow(own));
    destroyed_in_handler = destroyed;
  };
  const HWND window = Dialog::DoModeless(
      GetModuleHandleA(nullptr), plan.get(), nullptr,
      [&](HWND made) { return std::make_unique<Marked>(made, script, destroyed); });
  ASSERT_NE(window, nullptr);
  SendMessageA(window, kAct, 0, 0);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_FALSE(destroyed_in_handler);
  EXPECT_TRUE(destroyed);
}

TEST(DlgController, ModelessDialogMayGoWhileItsControlsAreFilled) {
  for (const bool fills : {false, true}) {
    SCOPED_TRACE(fills);
    TestTemplate plan = simple_plan();
    struct Vanishing : DlgController {
      Vanishing(HWND window, bool filled, int& alive_count)
          : DlgController(window), fills_(filled), count(alive_count) {
        ++count;
      }
      ~Vanishing() override { --count; }
      bool CanClose(bool) override {
        DestroyWindow(_hwnd);
        EXPECT_EQ(count, 1);
        return fills_;
      }
      const bool fills_;
      int& count;
    };
    int alive = 0;
    EXPECT_EQ(Dialog::DoModeless(
                  GetModuleHandleA(nullptr), plan.get(), nullptr,
                  [&](HWND made) { return std::make_unique<Vanishing>(made, fills, alive); }),
              nullptr);
    EXPECT_EQ(alive, 0);
  }
}

TEST(DlgController, EndOfTheMainWindowEndsTheMessageLoop) {
  TestTemplate plan = simple_plan();
  const HWND window =
      Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr, [](HWND made) {
        return std::make_unique<ScriptedDlg>(
            made, [](DlgController& dialog) { DestroyWindow(dialog.window()); });
      });
  current_thread_record()._hmainwnd = window;
  const int level = current_thread_record().loop_level;
  EXPECT_EQ(run_message_loop(), 0);
  EXPECT_EQ(current_thread_record()._hmainwnd, nullptr);
  EXPECT_EQ(current_thread_record().loop_level, level + 1);
  EXPECT_FALSE(IsWindow(window));
}

TEST(DlgController, ChildCommandAnswersItsSender) {
  struct Answering : ScriptedDlg {
    using ScriptedDlg::ScriptedDlg;
    LRESULT Command(unsigned id, unsigned code, HWND sender) override {
      return id == 500 ? static_cast<LRESULT>(code) + 1 : ScriptedDlg::Command(id, code, sender);
    }
    LRESULT Frame(unsigned id) override { return static_cast<LRESULT>(id) * 2; }
  };
  LRESULT command = 0;
  LRESULT frame = 0;
  run_modal([&](HWND window) {
    return std::make_unique<Answering>(window, [&](DlgController& dialog) {
      command = SendMessageA(dialog.window(), kMsgCommand, 500, 16);
      frame = SendMessageA(dialog.window(), kMsgFrame, 21, 0);
      dialog.EndDialog(1);
    });
  });
  EXPECT_EQ(command, 17);
  EXPECT_EQ(frame, 42);
}

/// Claims F5 and notes every key that it is offered.
struct ClaimingDlg : ScriptedDlg {
  using ScriptedDlg::ScriptedDlg;
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != kMsgTranslate) return ScriptedDlg::WndProc(message, wparam, lparam);
    const MSG& key = *reinterpret_cast<const MSG*>(lparam);
    if (key.message == WM_KEYDOWN) offered.push_back(key.wParam);
    return set_result(key.wParam == VK_F5);
  }
  std::vector<WPARAM> offered;
};

/// What an edit control makes of F5 and "A", and what its dialog was offered. The keys are pumped
/// by the dialog's own loop, or by a wait inside a handler.
struct KeyOutcome {
  std::vector<WPARAM> offered;
  std::string text;
};

std::string text_of(HWND window) {
  char text[100] = {};
  GetWindowTextA(window, text, sizeof text);
  return text;
}

KeyOutcome press_keys(bool inside_a_wait) {
  KeyOutcome outcome;
  const auto script = [&, started = false](DlgController& dialog) mutable {
    const HWND edit = GetDlgItem(dialog.window(), kEditId);
    if (!started) {
      started = true;
      PostMessageA(edit, WM_KEYDOWN, VK_F5, 1);
      PostMessageA(edit, WM_KEYDOWN, 'A', 1);
      for (int i = 0; inside_a_wait && i < 500 && text_of(edit).empty(); ++i)
        sleep_with_messages(10);
    }
    outcome.text = text_of(edit);
    if (outcome.text.empty()) {
      PostMessageA(dialog.window(), kAct, 0, 0);
      return;
    }
    outcome.offered = static_cast<ClaimingDlg&>(dialog).offered;
    dialog.EndDialog(1);
  };
  run_modal([&](HWND window) { return std::make_unique<ClaimingDlg>(window, script); });
  return outcome;
}

TEST(DlgController, KeysAreOfferedOnceBeforeTheyReachTheirControl) {
  for (const bool inside_a_wait : {false, true}) {
    SCOPED_TRACE(inside_a_wait);
    const KeyOutcome outcome = press_keys(inside_a_wait);
    EXPECT_EQ(outcome.offered, (std::vector<WPARAM>{VK_F5, 'A'}));
    EXPECT_EQ(outcome.text, "a");
  }
}

TEST(DlgController, KeysOfADialogAreNotOfferedToItsOwner) {
  std::vector<WPARAM> offered_to_owner;
  const auto owner_script = [&](DlgController& owner) {
    TestTemplate plan = simple_plan();
    const auto inner_script = [step = 0](DlgController& inner) mutable {
      if (step++ == 0) {
        PostMessageA(GetDlgItem(inner.window(), kEditId), WM_KEYDOWN, VK_F5, 1);
        PostMessageA(inner.window(), kAct, 0, 0);
      } else {
        inner.EndDialog(1);
      }
    };
    Dialog::DoModal(GetModuleHandleA(nullptr), plan.get(), owner.window(), [&](HWND window) {
      return std::make_unique<ScriptedDlg>(window, inner_script);
    });
    offered_to_owner = static_cast<ClaimingDlg&>(owner).offered;
    owner.EndDialog(1);
  };
  run_modal([&](HWND window) { return std::make_unique<ClaimingDlg>(window, owner_script); });
  EXPECT_TRUE(offered_to_owner.empty());
}

/// Takes a WM_QUIT off the queue; true if there was one.
bool quit_was_posted() {
  MSG message = {};
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) return true;
  }
  return false;
}

TEST(Dialog, QuitDuringAWaitEndsTheDialogAndReachesTheLoopAround) {
  bool slept = true;
  run_script([&](DlgController&) {
    PostQuitMessage(0);
    slept = sleep_with_messages(20000);
  });
  EXPECT_FALSE(slept);
  EXPECT_TRUE(quit_was_posted());
}

TEST(Dialog, QuitEndsADialogThatWasOpenedDuringAWait) {
  bool outer_slept = true;
  bool inner_slept = true;
  run_script([&, started = false](DlgController& outer) mutable {
    if (started) {
      run_script([&](DlgController&) {
        PostQuitMessage(0);
        inner_slept = sleep_with_messages(20000);
      });
      return;
    }
    started = true;
    PostMessageA(outer.window(), kAct, 0, 0);
    outer_slept = sleep_with_messages(20000);
  });
  EXPECT_FALSE(inner_slept);
  EXPECT_FALSE(outer_slept);
  EXPECT_TRUE(quit_was_posted());
}

TEST(ResizeController, TellsItsSmallestSizeAndItsClientSpace) {
  MINMAXINFO limits = {};
  RECT space = {};
  RECT client = {};
  RECT frame = {};
  struct Sized : ScriptedDlg {
    Sized(HWND window, Script script) : ScriptedDlg(window, std::move(script)) {
      resizer.init(window);
    }
  };
  run_modal([&](HWND window) {
    return std::make_unique<Sized>(window, [&](DlgController& dialog) {
      GetWindowRect(dialog.window(), &frame);
      GetClientRect(dialog.window(), &client);
      SendMessageA(dialog.window(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
      SendMessageA(dialog.window(), kMsgClientSpace, 0, reinterpret_cast<LPARAM>(&space));
      dialog.EndDialog(1);
    });
  });
  EXPECT_EQ(limits.ptMinTrackSize.x, width(frame));
  EXPECT_EQ(limits.ptMinTrackSize.y, height(frame));
  EXPECT_TRUE(EqualRect(&space, &client));
}

TEST(ResizeController, LaysOutForEachSizeButAMinimisedOne) {
  struct Laid : ScriptedDlg {
    Laid(HWND window, Script script) : ScriptedDlg(window, std::move(script)) {
      const ResizeRule rule = {kEditId, kMoveLeft | kMoveRight};
      resizer.add(&rule, 1);
      resizer.init(window);
    }
  };
  constexpr WPARAM types[] = {SIZE_MINIMIZED, SIZE_RESTORED, SIZE_MINIMIZED, SIZE_MAXIMIZED};
  std::vector<LONG> moved_by;
  run_modal([&](HWND window) {
    return std::make_unique<Laid>(window, [&](DlgController& dialog) {
      const HWND edit = GetDlgItem(dialog.window(), kEditId);
      RECT start = {};
      RECT client = {};
      GetWindowRect(edit, &start);
      GetClientRect(dialog.window(), &client);
      for (const WPARAM type : types) {
        client.right += 10;
        SendMessageA(dialog.window(), WM_SIZE, type, MAKELPARAM(client.right, client.bottom));
        RECT place = {};
        GetWindowRect(edit, &place);
        moved_by.push_back(place.left - start.left);
      }
      dialog.EndDialog(1);
    });
  });
  EXPECT_EQ(moved_by, (std::vector<LONG>{0, 20, 20, 40}));
}

TEST(CtlColorController, TakesTheBrushFromTheControl) {
  struct Coloured : SubclassController {
    using SubclassController::SubclassController;
    LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
      if (message != kMsgCtlColor) return SubclassController::WndProc(message, wparam, lparam);
      return reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH));
    }
  };
  struct ColouredDlg : CtlColorController<ScriptedDlg> {
    using CtlColorController<ScriptedDlg>::CtlColorController;
  };
  LRESULT own = 0;
  LRESULT other = 0;
  run_modal([&](HWND window) {
    return std::make_unique<ColouredDlg>(window, [&](DlgController& dialog) {
      const HWND edit = GetDlgItem(dialog.window(), kEditId);
      const HWND button = GetDlgItem(dialog.window(), kButtonId);
      const HDC context = GetDC(edit);
      const Coloured controller(edit);
      own = SendMessageA(dialog.window(), WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(context),
                         reinterpret_cast<LPARAM>(edit));
      other = SendMessageA(dialog.window(), WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(context),
                           reinterpret_cast<LPARAM>(button));
      ReleaseDC(edit, context);
      dialog.EndDialog(1);
    });
  });
  EXPECT_EQ(own, reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH)));
  EXPECT_NE(other, own);
  EXPECT_NE(other, 0);
}

TEST(WaitCursor, NestsAndGivesTheOuterOneBack) {
  ThreadRecord& record = current_thread_record();
  ASSERT_EQ(record.cursor, nullptr);
  {
    const WaitCursor outer;
    EXPECT_EQ(record.cursor, LoadCursorA(nullptr, IDC_WAIT));
    {
      const WaitCursor inner(nullptr);
      EXPECT_EQ(record.cursor, LoadCursorA(nullptr, IDC_ARROW));
    }
    EXPECT_EQ(record.cursor, LoadCursorA(nullptr, IDC_WAIT));
  }
  EXPECT_EQ(record.cursor, nullptr);
}

TEST(WaitCursor, CoversTheDialogWhileItStands) {
  HCURSOR inside = nullptr;
  HCURSOR on_border = nullptr;
  HCURSOR afterwards = nullptr;
  run_script([&](DlgController& dialog) {
    const HWND window = dialog.window();
    const auto cursor_at = [&](WORD hit) {
      SendMessageA(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window),
                   MAKELPARAM(hit, WM_MOUSEMOVE));
      return GetCursor();
    };
    {
      const WaitCursor cursor;
      inside = cursor_at(HTCLIENT);
      on_border = cursor_at(HTLEFT);
    }
    afterwards = cursor_at(HTCLIENT);
    dialog.EndDialog(1);
  });
  const HCURSOR wait = LoadCursorA(nullptr, IDC_WAIT);
  EXPECT_EQ(inside, wait);
  EXPECT_NE(on_border, wait);
  EXPECT_NE(afterwards, wait);
}

TEST(OwnerDrawController, HandsBothRequestsBackToTheControl) {
  struct Recording : SubclassController {
    using SubclassController::SubclassController;
    LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
      if (message != kMsgOwnerDraw) return SubclassController::WndProc(message, wparam, lparam);
      requests.push_back(static_cast<UINT>(wparam));
      return 1;
    }
    std::vector<UINT> requests;
  };
  std::vector<UINT> requests;
  run_script([&](DlgController& dialog) {
    Recording control(GetDlgItem(dialog.window(), kButtonId));
    MEASUREITEMSTRUCT measure = {};
    DRAWITEMSTRUCT draw = {};
    SendMessageA(dialog.window(), WM_MEASUREITEM, kButtonId, reinterpret_cast<LPARAM>(&measure));
    SendMessageA(dialog.window(), WM_DRAWITEM, kButtonId, reinterpret_cast<LPARAM>(&draw));
    requests = control.requests;
    dialog.EndDialog(1);
  });
  EXPECT_EQ(requests, (std::vector<UINT>{WM_MEASUREITEM, WM_DRAWITEM}));
}

}  // namespace
}  // namespace ORLO
