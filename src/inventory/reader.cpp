#include "inventory/reader.h"

#include <new>
#include <utility>

#include "orlo/exception.h"

namespace {

using ORLO::Lock;

constexpr uint32_t kOutOfMemory = 14;
constexpr uint32_t kWatchedChanges =
    kRegNotifyName | kRegNotifyAttributes | kRegNotifyLastSet | kRegNotifySecurity;
constexpr char kUninstallPath[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

/// Says that a pass is over, on every way out of it.
class PassEnd {
 public:
  PassEnd(std::atomic<bool>& running, ORLO::Event& done) : running_(running), done_(done) {}
  ~PassEnd() {
    running_ = false;
    done_.set();
  }
  PassEnd(const PassEnd&) = delete;
  PassEnd& operator=(const PassEnd&) = delete;

 private:
  std::atomic<bool>& running_;
  ORLO::Event& done_;
};

}  // namespace

UninstallReader::UninstallReader(const Services& services, TellChange tell_change)
    : ActiveFinisher("UninstallReader"),
      apply_thread_language_(services.apply_thread_language),
      tell_change_(std::move(tell_change)),
      table_(packageSchema()),
      source_(services.registry, services.files, services.clock) {
  Registry& registry = services.registry;
  registry.open(kLocalMachine, kUninstallPath, kKeyRead, local_.key);
  if (services.under_wow64) {
    registry.open(kLocalMachine, kUninstallPath, kKeyRead | kKeyWow64_64, local64_.key);
  }
  registry.open(kCurrentUser, kUninstallPath, kKeyRead, user_.key);
}

UninstallReader::~UninstallReader() {
  stop(WaitMode::pump);
}

void UninstallReader::start_pass() {
  running_ = true;
  done_event_.reset();
  resume();
  start_event_.set();
}

void UninstallReader::accept_loss() noexcept {
  lost_ = true;
  running_ = false;
}

void UninstallReader::revive() {
  renew();
  lost_ = false;
}

std::unique_ptr<Table> UninstallReader::hand_over(Table& current) {
  const Lock hold(data_lock_);
  if (!data_changed_.exchange(false)) return nullptr;
  auto difference = std::make_unique<Table>(table_, current);
  if (difference->size() != 0) current.assign(table_);
  return difference;
}

void UninstallReader::clear() {
  const Lock hold(data_lock_);
  table_.clear_rows();
}

String UninstallReader::error_text() const {
  const Lock hold(data_lock_);
  return error_text_;
}

void UninstallReader::set_error_text(const String& text) {
  const Lock hold(data_lock_);
  error_text_ = text;
}

int UninstallReader::Run() {
  apply_thread_language_();
  while (!stop_requested()) {
    ORLO::Waitable* items[] = {&start_event_, &finish_signal()};
    ORLO::wait_any(items, 2, ORLO::kInfinite);
    if (stop_requested()) break;
    const PassEnd end(running_, done_event_);
    set_error_text(String());
    try {
      guarded_pass();
    } catch (...) {
      // Before the end of the pass is told: who asks for the next one needs a new thread.
      lost_ = true;
      throw;
    }
  }
  running_ = false;
  return 0;
}

void UninstallReader::guarded_pass() {
  try {
    pass();
  } catch (const ORLO::Exception& exception) {
    set_error_text(exception.what());
  } catch (const std::bad_alloc&) {
    set_error_text(ORLO::SDKException(kOutOfMemory).what());
  }
}

void UninstallReader::pass() {
  std::set<RowKey> unseen;
  {
    const Lock hold(data_lock_);
    for (const auto& [key, row] : table_.rows)
      unseen.insert(unseen.end(), key);
  }
  // The order is the precedence of the table: a later row with the same key replaces an earlier.
  read_place(kLocalMachine, local_, false, unseen);
  read_place(kLocalMachine, local64_, true, unseen);
  read_place(kCurrentUser, user_, false, unseen);
  erase_unseen(unseen);
}

void UninstallReader::read_place(int32_t root, Place& place, bool is64BitView,
                                 std::set<RowKey>& unseen) {
  if (!place.key) return;
  source_.readUninstallKey(root, place.key, unseen, is64BitView,
                           [this](const Row& row) { deliver(row); });
  // Behind the first read, so that what this pass brings isn't told once more.
  if (place.watcher != nullptr || !tell_change_) return;
  place.watcher = std::make_unique<RegWatcherThread>(place.key, place.change_event, tell_change_,
                                                     true, kWatchedChanges);
}

void UninstallReader::deliver(const Row& row) {
  const Lock hold(data_lock_);
  table_.addRow(row);
  data_changed_ = true;
}

void UninstallReader::erase_unseen(const std::set<RowKey>& unseen) {
  if (unseen.empty()) return;
  const Lock hold(data_lock_);
  for (const RowKey& key : unseen)
    table_.erase(key);
  data_changed_ = true;
}
