#include "view/list_icons.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "orlo/message_wait.h"
#include "platform/memory_files.h"
#include "view/entry_test_support.h"
#include "view/recording_list_test_support.h"

namespace {

constexpr char kFile[] = "C:\\some.exe";

/// The system's own icon, whatever is asked for.
class AnyIcon final : public IconExtractor {
 public:
  std::unique_ptr<Icon> extract(const char*, int32_t, bool large) override {
    ++extractions;
    if (at_extraction) at_extraction();
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return system_->extract(path, 0, large);
  }
  std::atomic<int> extractions{0};
  std::function<void()> at_extraction;

 private:
  const std::unique_ptr<IconExtractor> system_ = make_system_icon_extractor();
};

/// Stands for the dialog; answers as it is told.
class Receiver {
 public:
  explicit Receiver(std::function<void(HWND)> answer) {
    answer_ = std::move(answer);
    window =
        CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
    previous_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Receiver::hear)));
    list = CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | LVS_REPORT, 0, 0, 200, 100, window, nullptr,
                         nullptr, nullptr);
  }
  ~Receiver() {
    if (IsWindow(window) != FALSE) DestroyWindow(window);
    answer_ = {};
  }
  Receiver(const Receiver&) = delete;
  Receiver& operator=(const Receiver&) = delete;

  HWND window = nullptr;
  HWND list = nullptr;

 private:
  static LRESULT CALLBACK hear(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == ListIcons::kCall && answer_) answer_(window);
    return CallWindowProcA(previous_, window, message, wparam, lparam);
  }
  static inline std::function<void(HWND)> answer_;
  static inline WNDPROC previous_ = nullptr;
};

class ListIconsTest : public testing::Test {
 protected:
  ListIconsTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    para_.noPersist = true;
    UninstallEntry entry = make_entry("one");
    entry.displayIcon = kFile;
    files_.add_file(kFile);
    model_.applyEntry(entry);
  }
  void make(std::function<void(HWND)> answer) {
    receiver_ = std::make_unique<Receiver>(std::move(answer));
    icons_ =
        std::make_unique<ListIcons>(ListIcons::Parts{receiver_->window, receiver_->list, model_,
                                                     lock_, extractor_, files_, para_, [] {}},
                                    GetModuleHandleA(nullptr));
  }
  ~ListIconsTest() override { icons_.reset(); }
  bool pass() {
    icons_->start_pass();
    ORLO::Waitable* const items[] = {&icons_->done_event()};
    return ORLO::wait_with_messages(items, 1, 20000) == 0;
  }
  int mapped() {
    const auto found = model_.images().find(kFile);
    return found != model_.images().end() ? found->second : -2;
  }
  int images() const {
    return ImageList_GetImageCount(
        reinterpret_cast<HIMAGELIST>(SendMessageA(receiver_->list, LVM_GETIMAGELIST, 1, 0)));
  }

  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
  ORLO::CriticalSection lock_;
  AnyIcon extractor_;
  MemoryFiles files_;
  UninstallPara para_;
  std::unique_ptr<Receiver> receiver_;
  std::unique_ptr<ListIcons> icons_;
};

TEST_F(ListIconsTest, AnIconIsAppendedByTheWindowsThread) {
  const DWORD main_thread = GetCurrentThreadId();
  make([&](HWND) {
    EXPECT_EQ(GetCurrentThreadId(), main_thread);
    icons_->answer_call();
  });
  ASSERT_TRUE(pass());
  EXPECT_EQ(mapped(), 1);
  EXPECT_EQ(images(), 2);
}

TEST_F(ListIconsTest, AnIconForAWindowThatHasGoneIsStillToBeLoaded) {
  make([&](HWND) { icons_->answer_call(); });
  DestroyWindow(receiver_->window);
  ASSERT_TRUE(pass());
  EXPECT_EQ(extractor_.extractions, 1);
  EXPECT_EQ(mapped(), -1);
}

TEST_F(ListIconsTest, AWindowThatGoesInTheMiddleOfAnExtractionLeavesTheIconToBeLoaded) {
  make([&](HWND) { icons_->answer_call(); });
  extractor_.at_extraction = [this] { SendMessageA(receiver_->window, WM_CLOSE, 0, 0); };
  ASSERT_TRUE(pass());
  EXPECT_FALSE(IsWindow(receiver_->window));
  EXPECT_EQ(mapped(), -1);
}

TEST_F(ListIconsTest, AWindowThatDoesNotAnswerLeavesTheIconToBeLoaded) {
  make({});
  ASSERT_TRUE(pass());
  EXPECT_EQ(mapped(), -1);
  EXPECT_EQ(images(), 1);
}

TEST_F(ListIconsTest, ALineOfAWindowThatHasGoneIsLeftAlone) {
  int calls = 0;
  make([&](HWND window) {
    ++calls;
    icons_->answer_call();
    // Between the image and its line.
    DestroyWindow(window);
  });
  ASSERT_TRUE(pass());
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(mapped(), 1);
}

TEST_F(ListIconsTest, ACallIsAnsweredOnce) {
  make([&](HWND) {
    icons_->answer_call();
    icons_->answer_call();
  });
  ASSERT_TRUE(pass());
  EXPECT_EQ(images(), 2);
  icons_->answer_call();
  EXPECT_EQ(images(), 2);
}

}  // namespace
