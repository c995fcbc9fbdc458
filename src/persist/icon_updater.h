// The thread that loads the icons which the list doesn't have yet, and keeps them for the next run.
#pragma once

#include <atomic>
#include <functional>

#include "inventory/entry.h"
#include "orlo/active_object.h"
#include "persist/image_index_map.h"
#include "persist/uninstall_para.h"
#include "platform/files.h"
#include "platform/icons.h"
#include "platform/image_list.h"

/// The packages as the updater's thread sees them while it holds their lock.
class IconRows {
 public:
  /// A package, and the line that the list control has for it.
  struct Row {
    const UninstallEntry& entry;
    int line = -1;  ///< position in the list control; -1: it isn't shown
    int image = 0;  ///< what the line shows; the visitor changes it with the line
  };
  /// False ends the walk.
  using Visitor = std::function<bool(Row& row)>;

  virtual ~IconRows() = default;
  /// Goes over all packages in the order of their ids. The lock must be held.
  virtual void visit_icons(const Visitor& visitor) = 0;
};

/// Where the list control's lines get their images; safe to call from the updater's thread while
/// the main thread pumps its messages.
class IconLines {
 public:
  virtual ~IconLines() = default;
  virtual void set_image(int line, int image) = 0;
};

/// Idle until a pass is asked for. All public operations are the main thread's.
class IconUpdater : public ORLO::ActiveFinisher {
 public:
  /// All must outlive the updater.
  struct Parts {
    IconRows& rows;
    ORLO::CriticalSection& lock;  ///< of the rows and of the map; held for a whole pass
    ImageIndexMap& map;
    ImageList& images;
    IconLines& lines;
    IconExtractor& extractor;
    Files& files;
    const UninstallPara& para;        ///< the two paths and `noPersist`; they don't change any more
    void (*apply_thread_language)();  ///< called first on the thread
  };

  explicit IconUpdater(const Parts& parts);
  ~IconUpdater() override;

  /// Asks for a pass; starts the thread the first time.
  void start_pass();
  /// While one lives no pass goes on: who waits for the lock gets it soon. The rest of a pass that
  /// was broken off is made up for afterwards.
  class Pause {
   public:
    explicit Pause(IconUpdater& updater) noexcept : updater_(updater) { ++updater_.pauses_; }
    ~Pause() { --updater_.pauses_; }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    IconUpdater& updater_;
  };

  /// Signalled at the end of each pass.
  ORLO::Event& done_event() noexcept { return doneEvent; }
  /// True from the first start_pass() to the end of the thread.
  bool is_busy() const noexcept { return busy && !finished(); }

 protected:
  int Run() override;

 private:
  void guarded_pass();
  void pass();
  bool update_rows(ImageIndexMap& kept);
  void update_row(IconRows::Row& row, int32_t image);
  bool enter_lock();

  const Parts parts_;
  ORLO::Event wakeEvent;
  ORLO::Event doneEvent;
  bool busy = false;  ///< a pass has been asked for
  std::atomic<int> pauses_{0};
};
