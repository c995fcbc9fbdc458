// The thread that reads the inventory while the main thread keeps the window alive.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <set>

#include "inventory/installer_source.h"
#include "inventory/reader_rows.h"
#include "inventory/reg_watcher.h"
#include "inventory/servicing_packages.h"
#include "inventory/uninstall_source.h"
#include "inventory/updates_registry.h"
#include "orlo/active_object.h"
#include "platform/accounts.h"
#include "platform/installer.h"
#include "platform/system_version.h"
#include "platform/wmi.h"

/// Idle until a pass is asked for. All public operations are the main thread's.
class UninstallReader : public ORLO::ActiveFinisher {
 public:
  /// What the reader stands on; all must outlive it.
  struct Services {
    Registry& registry;
    Files& files;
    const ORLO::Clock& clock;
    Installer& installer;
    Wmi& wmi;
    Accounts& accounts;
    SystemVersion version;
    bool under_wow64;                 ///< there is a 64-bit view beside the process's own
    void (*apply_thread_language)();  ///< called first on the thread
  };
  /// Called on a watcher's thread when something has changed below an Uninstall key.
  using TellChange = std::function<void()>;

  /// Opens the Uninstall keys; one that can't be opened is left out for the whole run. From its
  /// first pass on each is watched, if there is somebody to tell. `window`: the main window's
  /// handle (HWND), which owns what the installer might show.
  explicit UninstallReader(const Services& services, TellChange tell_change = {},
                           void* window = nullptr);
  ~UninstallReader() override;

  /// Asks for a pass; starts the thread the first time. The reader must not be lost.
  void start_pass();
  /// Signalled when a pass is over.
  ORLO::Event& done_event() noexcept { return done_event_; }
  /// True from start_pass() to the end of the pass.
  bool pass_running() const noexcept { return running_; }
  /// True if a failure of an unknown kind is ending the thread, or has ended it.
  bool lost() const noexcept { return lost_ || (finished() && !stop_requested()); }
  /// To be called when thread() has ended: no pass is running any more.
  void accept_loss() noexcept;
  /// Gives a lost reader a new thread; its old one must have ended. The rows stay.
  void revive();
  /// True if the last pass is over without having read all sources, and no other one will, as the
  /// reader has been asked to stop: the rows are no state of the machine.
  bool cut_short() const noexcept { return !running_ && stop_requested() && !whole_; }
  /// What the passes have read.
  ReaderRows& rows() noexcept { return rows_; }
  /// Text of the failure that ended the last pass; empty if none did.
  String error_text() const;

 protected:
  int Run() override;

 private:
  /// One of the registry's places; its watcher goes before the key that it watches.
  struct Place {
    ORLO::Event change_event;
    RegistryKey key;
    std::unique_ptr<RegWatcherThread> watcher;  ///< made by the reader's thread
  };

  using Unseen = std::set<RowKey>;

  void pass();
  /// A pass whose known failures end in error_text().
  void guarded_pass();
  void read_local(Unseen& unseen);
  void read_local64(Unseen& unseen);
  void read_user(Unseen& unseen);
  void read_place(int32_t root, Place& place, bool is64BitView, Unseen& unseen);
  void erase_unseen(Unseen& unseen);
  void read_products(Unseen& unseen);
  void read_updates_registry(Unseen& unseen);
  void read_update_log(Unseen& unseen);
  void read_servicing_packages(Unseen& unseen);
  void read_wmi_hotfixes(Unseen& unseen);
  void set_error_text(const String& text);

  const Services services_;
  const TellChange tell_change_;
  Place local_;
  Place local64_;
  Place user_;
  ORLO::Event start_event_;
  ORLO::Event done_event_;
  std::atomic<bool> running_{false};
  std::atomic<bool> lost_{false};
  std::atomic<bool> whole_{false};  ///< the last pass came to the end of its sources
  ReaderRows rows_;

  mutable ORLO::CriticalSection error_lock_;
  String error_text_;  ///< guarded by error_lock_

  // The reader's thread alone.
  const RowSink deliver_;
  UninstallSource uninstall_;
  InstallerSource installer_;
  UpdatesRegistrySource updates_;
  ServicingPackagesSource servicing_;
};
