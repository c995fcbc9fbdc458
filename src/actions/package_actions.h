// Uninstall, modify, repair, and the removal of a registry entry.
#pragma once

#include "actions/action_parts.h"
#include "inventory/entry.h"
#include "orlo/message_wait.h"

bool canUninstall(const UninstallEntry* entry) noexcept;
bool canModify(const UninstallEntry* entry) noexcept;
bool canRepair(const UninstallEntry* entry) noexcept;
/// Only what stands in a registry key of its own can be removed from there.
bool canRemoveEntry(const UninstallEntry* entry) noexcept;

/// From the string table; the first three are formats.
struct ActionTexts {
  String ask_uninstall;  ///< takes displayName and name
  String ask_repair;
  String ask_remove;
  String exception;  ///< the title of a failure's box
};

/// Lives on the main thread. Each action gets a record of its own, as that of the list may go while
/// a box is open or an installer runs; it returns when the installer has ended and the refresh that
/// follows has been asked for. Actions may be nested: a second one may be started while the first
/// one waits.
class PackageActions {
 public:
  using Wait = int (*)(ORLO::Waitable* const* items, size_t count, uint32_t timeout);

  PackageActions(const ActionParts& parts, ActionTexts texts,
                 Wait wait = &ORLO::wait_with_messages);

  void uninstall(const UninstallEntry& entry);
  void modify(const UninstallEntry& entry);
  void repair(const UninstallEntry& entry);
  void remove(const UninstallEntry& entry);
  /// Ends every wait, now and from now on.
  void close() noexcept { closeEvent.set(); }

 private:
  bool agreed(const String& format, const UninstallEntry& entry, const char* title);
  bool run_and_wait(const String& command);
  bool wait_for_end(ORLO::Waitable& process);
  RegStatus delete_entry(const UninstallEntry& entry);

  const ActionParts parts_;
  const ActionTexts texts_;
  const Wait wait_;
  ORLO::Event closeEvent;  ///< resets itself: a wait that it ends sets it for the next one
};
