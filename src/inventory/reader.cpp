#include "inventory/reader.h"

#include <new>
#include <utility>

#include "inventory/update_log.h"
#include "inventory/wmi_hotfixes.h"
#include "orlo/com_error.h"
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

UninstallReader::UninstallReader(const Services& services, TellChange tell_change, void* window)
    : ActiveFinisher("UninstallReader"),
      services_(services),
      tell_change_(std::move(tell_change)),
      deliver_([this](const Row& row) { rows_.add(row); }),
      uninstall_(services.registry, services.files, services.clock),
      installer_(services.registry, {services.installer, services.files, services.clock}, window),
      updates_(services.registry, services.clock),
      servicing_(services.registry, services.accounts, services.clock) {
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
  whole_ = false;
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

String UninstallReader::error_text() const {
  const Lock hold(error_lock_);
  return error_text_;
}

void UninstallReader::set_error_text(const String& text) {
  const Lock hold(error_lock_);
  error_text_ = text;
}

int UninstallReader::Run() {
  services_.apply_thread_language();
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
  } catch (const ORLO::ComError& error) {
    set_error_text(ORLO::com_error_text(error));
  } catch (const std::bad_alloc&) {
    set_error_text(ORLO::SDKException(kOutOfMemory).what());
  }
}

/// The order is the precedence of the rows: a later one with the same key replaces an earlier.
void UninstallReader::pass() {
  using Step = void (UninstallReader::*)(Unseen & unseen);
  static constexpr Step kSteps[] = {
      &UninstallReader::read_local,        &UninstallReader::read_local64,
      &UninstallReader::read_user,         &UninstallReader::erase_unseen,
      &UninstallReader::read_products,     &UninstallReader::read_updates_registry,
      &UninstallReader::read_update_log,   &UninstallReader::read_servicing_packages,
      &UninstallReader::read_wmi_hotfixes,
  };
  // An older pass, of a cycle that was given up, may have ended after this one was asked for.
  whole_ = false;
  Unseen unseen = rows_.keys();
  for (const Step step : kSteps) {
    if (stop_requested()) return;
    (this->*step)(unseen);
  }
  whole_ = true;
}

void UninstallReader::read_local(Unseen& unseen) {
  read_place(kLocalMachine, local_, false, unseen);
}

void UninstallReader::read_local64(Unseen& unseen) {
  read_place(kLocalMachine, local64_, true, unseen);
}

void UninstallReader::read_user(Unseen& unseen) {
  read_place(kCurrentUser, user_, false, unseen);
}

/// Before the sources without keys of their own: their rows of the last pass go each time.
void UninstallReader::erase_unseen(Unseen& unseen) {
  rows_.erase(unseen);
}

void UninstallReader::read_products(Unseen& unseen) {
  installer_.ReadMsiProducts(rows_, unseen, deliver_);
}

void UninstallReader::read_place(int32_t root, Place& place, bool is64BitView, Unseen& unseen) {
  if (!place.key) return;
  uninstall_.readUninstallKey(root, place.key, unseen, is64BitView, deliver_);
  // After the first read, so that what this pass brings isn't told once more.
  if (place.watcher != nullptr || !tell_change_) return;
  place.watcher = std::make_unique<RegWatcherThread>(place.key, place.change_event, tell_change_,
                                                     true, kWatchedChanges);
}

void UninstallReader::read_updates_registry(Unseen& unseen) {
  RegistryKey key;
  if (services_.registry.open(kLocalMachine, kUpdatesPath, kKeyRead, key) != kRegSuccess) return;
  updates_.ReadUpdatesRegistry(key, String(), unseen, deliver_);
}

void UninstallReader::read_update_log(Unseen& unseen) {
  const auto folder = services_.files.windows_folder();
  if (!folder) return;
  ReadUpdateLog(String::formatted("%s\\WindowsUpdate.log", *folder), services_.clock, unseen,
                deliver_);
}

void UninstallReader::read_servicing_packages(Unseen& unseen) {
  if (!services_.version.at_least_nt6()) return;
  servicing_.ReadServicingPackages(unseen, deliver_);
}

void UninstallReader::read_wmi_hotfixes(Unseen& unseen) {
  if (!services_.version.at_least_nt6()) return;
  ReadWmiHotfixes(services_.wmi, services_.clock, rows_, unseen, deliver_);
}
