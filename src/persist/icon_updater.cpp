#include "persist/icon_updater.h"

#include <exception>

#include "orlo/com_error.h"
#include "orlo/exception.h"
#include "persist/icon_cache.h"
#include "persist/icon_images.h"

namespace {

constexpr uint32_t kRetryMilliseconds = 5;

/// Signals on every way out of a scope.
class SignalAtEnd {
 public:
  explicit SignalAtEnd(ORLO::Event& event) noexcept : event_(event) {}
  ~SignalAtEnd() { event_.set(); }
  SignalAtEnd(const SignalAtEnd&) = delete;
  SignalAtEnd& operator=(const SignalAtEnd&) = delete;

 private:
  ORLO::Event& event_;
};

/// Leaves a section that was entered already.
class Entered {
 public:
  explicit Entered(ORLO::CriticalSection& section) noexcept : section_(section) {}
  ~Entered() { section_.leave(); }
  Entered(const Entered&) = delete;
  Entered& operator=(const Entered&) = delete;

 private:
  ORLO::CriticalSection& section_;
};

}  // namespace

IconUpdater::IconUpdater(const Parts& parts) : ActiveFinisher("IconUpdater"), parts_(parts) {}

IconUpdater::~IconUpdater() {
  stop(WaitMode::pump);
}

void IconUpdater::start_pass() {
  busy = true;
  resume();
  doneEvent.reset();
  wakeEvent.set();
}

int IconUpdater::Run() {
  parts_.apply_thread_language();
  while (!stop_requested()) {
    ORLO::Waitable* const items[] = {&wakeEvent, &finish_signal()};
    ORLO::wait_any(items, 2, ORLO::kInfinite);
    const SignalAtEnd done(doneEvent);
    if (!stop_requested()) guarded_pass();
  }
  return 0;
}

/// Icons are worth no report: the next pass tries again.
void IconUpdater::guarded_pass() {
  try {
    pass();
  } catch (const ORLO::Exception&) {
  } catch (const ORLO::ComError&) {
  } catch (const std::exception&) {
  }
}

void IconUpdater::pass() {
  ImageIndexMap kept;
  while (!update_rows(kept)) {
  }
  if (!stop_requested()) write_icon_cache(parts_.para, kept, parts_.images);
}

/// `kept` becomes the map as the pass leaves it: the main thread may change it once the lock is
/// free. False if the pass was broken off by a pause. Nothing is extracted twice, as the map keeps
/// what has been loaded by then.
bool IconUpdater::update_rows(ImageIndexMap& kept) {
  if (!enter_lock()) return true;
  const Entered hold(parts_.lock);
  bool whole = true;
  IconImages icons(parts_.map, parts_.images, parts_.extractor, parts_.files);
  parts_.rows.visit_icons([&](IconRows::Row& row) {
    whole = pauses_ == 0;
    if (stop_requested() || !whole) return false;
    update_row(row, icons.drawn_image(row.entry));
    return true;
  });
  if (stop_requested()) return true;
  if (whole && keeps_icons(parts_.para)) kept = parts_.map;
  return whole;
}

void IconUpdater::update_row(IconRows::Row& row, int32_t image) {
  if (row.line < 0 || row.image == image) return;
  parts_.lines.set_image(row.line, image);
  row.image = image;
}

/// Without blocking in it: whoever holds the lock may be stopping this thread. False if so.
bool IconUpdater::enter_lock() {
  while (!stop_requested()) {
    if (pauses_ == 0 && parts_.lock.try_enter()) return true;
    ORLO::wait_for(finish_signal(), kRetryMilliseconds);
  }
  return false;
}
