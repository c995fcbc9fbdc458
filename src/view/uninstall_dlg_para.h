// What the main dialog's controls are loaded from and stored to.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "inventory/entry.h"
#include "orlo/para_struct.h"
#include "persist/uninstall_para.h"
#include "platform/icons.h"

/// The run's record and the chosen package as the parameters of the main dialog.
struct UninstallDlgPara : ORLO::ParaStruct {
  explicit UninstallDlgPara(const UninstallPara& run_para) : run(run_para) {}

  /// Reads the search text alone, or shows the chosen package in the pane below the list.
  void updateControls() override;
  /// Lets the buttons do what can be done for the chosen package, whatever the pane shows.
  void enable_actions() const;

  /// Null if no package is chosen or the chosen one has gone.
  const UninstallEntry* current_entry() const { return find ? find(current) : nullptr; }

  UninstallPara run;
  /// The chosen package. Only its id is kept, as the record may go at any time; 0 for none.
  uint32_t current = 0;
  std::function<const UninstallEntry*(uint32_t id)> find;
  /// Gives the pane's icon, null if the package has none.
  std::function<std::unique_ptr<Icon>(const UninstallEntry& entry)> load_icon;

 private:
  void show_icon(const UninstallEntry* entry);

  std::unique_ptr<Icon> icon_;  ///< in the pane
};
