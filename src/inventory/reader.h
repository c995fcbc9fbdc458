// The thread that reads the inventory while the main thread keeps the window alive.
#pragma once

#include <atomic>
#include <memory>
#include <set>

#include "inventory/package_schema.h"
#include "inventory/uninstall_source.h"
#include "orlo/active_object.h"

/// Idle until a pass is asked for. All public operations are the main thread's.
class UninstallReader : public ORLO::ActiveFinisher {
 public:
  /// What the reader stands on; all must outlive it.
  struct Services {
    Registry& registry;
    Files& files;
    const ORLO::Clock& clock;
    bool under_wow64;                 ///< there is a 64-bit view beside the process's own
    void (*apply_thread_language)();  ///< called first on the thread
  };

  /// Opens the Uninstall keys; one that can't be opened is left out for the whole run.
  explicit UninstallReader(const Services& services);
  ~UninstallReader() override;

  /// Asks for a pass; starts the thread the first time.
  void start_pass();
  /// Signalled when a pass is over.
  ORLO::Event& done_event() noexcept { return done_event_; }
  /// True from start_pass() to the end of the pass.
  bool pass_running() const noexcept { return running_; }
  bool data_changed() const noexcept { return data_changed_; }
  /// What distinguishes the reader's table from `current`, which becomes a copy of it. Null if
  /// nothing has been written since the last call.
  std::unique_ptr<const Table> hand_over(Table& current);
  /// Forgets all rows.
  void clear();
  /// Text of the failure that ended the last pass; empty if none did.
  String error_text() const;

 protected:
  int Run() override;

 private:
  void pass();
  void read_place(int32_t root, const RegistryKey& key, bool is64BitView, std::set<RowKey>& unseen);
  void deliver(const Row& row);
  void erase_unseen(const std::set<RowKey>& unseen);
  void set_error_text(const String& text);

  void (*const apply_thread_language_)();
  RegistryKey key_local_;
  RegistryKey key_local64_;
  RegistryKey key_user_;
  ORLO::Event start_event_;
  ORLO::Event done_event_;
  std::atomic<bool> running_{false};

  mutable ORLO::CriticalSection data_lock_;
  // Guarded by data_lock_, but that the reader's thread, the only writer of table_ during a pass,
  // reads it without.
  Table table_;
  std::atomic<bool> data_changed_{false};
  String error_text_;

  UninstallSource source_;  ///< the reader's thread alone
};
