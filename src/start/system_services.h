// All that the program stands on, as this system has it.
#pragma once

#include <memory>

#include "start/program.h"

/// What update checks end the process with.
[[noreturn]] void end_process() noexcept;

class SystemServices {
 public:
  /// The description of the newest version is at `description_url`, which must outlive this.
  explicit SystemServices(const char* description_url);

  /// Refer to this object.
  ProgramServices services();

 private:
  const char* const description_url_;
  const std::unique_ptr<Registry> registry_ = make_system_registry();
  const std::unique_ptr<Files> files_ = make_system_files();
  const std::unique_ptr<Shell> shell_ = make_system_shell();
  const std::unique_ptr<IconExtractor> icons_ = make_system_icon_extractor();
  const std::unique_ptr<Installer> installer_ = make_system_installer();
  const std::unique_ptr<Wmi> wmi_ = make_system_wmi();
  const std::unique_ptr<Accounts> accounts_ = make_system_accounts();
  const std::unique_ptr<CompoundStorage> storage_ = make_system_storage();
  // The main thread's own: one belongs to one thread.
  const std::unique_ptr<Installer> inspected_installer_ = make_system_installer();
  const std::unique_ptr<InstallerDatabases> databases_ = make_system_installer_databases();
  // One for each of the threads that check for updates.
  const std::unique_ptr<Internet> background_internet_ = make_system_internet();
  const std::unique_ptr<Internet> manual_internet_ = make_system_internet();
  const std::unique_ptr<OwnKey> own_key_ = make_system_own_key();
  const std::unique_ptr<TemporaryFiles> temporary_files_ = make_system_temporary_files();
};
