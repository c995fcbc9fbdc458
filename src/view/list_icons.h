// The icons of the main list: their images, and the thread that loads them.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "orlo/orlowin.h"
#include "persist/icon_updater.h"
#include "platform/system_image_list.h"
#include "view/list_model.h"

/// Lives on the main thread. What changes the list or its images is done there, too, as the control
/// draws from them: the updater's thread has it done by a sent message. It only reads the images
/// itself, and nobody changes them but through it.
class ListIcons : private ImageList, private IconLines {
 public:
  struct Parts {
    HWND dialog;  ///< gets kCall
    HWND list;    ///< is given the images
    ListModel& model;
    ORLO::CriticalSection& listLock;
    IconExtractor& extractor;
    Files& files;
    const UninstallPara& para;
    void (*apply_thread_language)();
  };
  /// Sent to the dialog by the updater's thread; the dialog answers it with answer_call().
  static constexpr UINT kCall = WM_APP + 1;

  /// Reads what an earlier run has kept. All parts must outlive the icons.
  ListIcons(const Parts& parts, HINSTANCE module);
  ~ListIcons() override;

  /// Gives the list's lock to the main thread for a scope, though a pass may be going on.
  class Pause : public IconUpdater::Pause {
   public:
    explicit Pause(ListIcons& icons) noexcept : IconUpdater::Pause(*icons.updater_) {}
  };

  /// Has the icons loaded that the list doesn't have yet.
  void start_pass() { updater_->start_pass(); }
  /// Signalled at the end of each pass.
  ORLO::Event& done_event() noexcept { return updater_->done_event(); }
  /// Asks the thread to end.
  void begin_stop() { updater_->stop(ORLO::ActiveObject::WaitMode::none); }
  /// Waits for its end, too, while messages flow.
  void stop() { updater_->stop(ORLO::ActiveObject::WaitMode::pump); }
  /// Does what the updater's thread waits for, if it waits for anything.
  void answer_call();

 private:
  using Work = std::function<void()>;

  // ImageList, for the updater's thread
  int append(const Icon& icon) override;
  int count() const override { return images_->count(); }
  Written write(std::string& bytes) const override { return images_->write(bytes); }
  // IconLines, likewise
  void set_image(int line, int image) override;
  void call(const Work& work);

  const HWND dialog_;
  const HWND list_;
  ListModel& model_;
  std::unique_ptr<ImageList> images_;
  std::atomic<const Work*> awaited_{nullptr};
  std::unique_ptr<IconUpdater> updater_;
};
