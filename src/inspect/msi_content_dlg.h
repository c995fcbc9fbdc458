// The dialog that shows the tables of a package's database.
#pragma once

#include "inspect/database_content.h"
#include "inspect/inspection_dlg.h"
#include "orlo/list_view.h"

class MSIContentDlg : public InspectionDlg {
 public:
  /// Reads the whole database. What goes wrong is reported, and what was read until then is shown.
  MSIContentDlg(HWND window, const Resources& resources, const UninstallEntry& package,
                InstallerDatabases& databases);

  LRESULT Command(unsigned id, unsigned code, HWND control) override;

 private:
  void load(InstallerDatabases& databases);
  void list_tables() const;
  void show_table(const String& name) const;
  void add_columns(const std::vector<ShownColumn>& columns) const;
  void add_rows(const Table& table, const std::vector<ShownColumn>& columns) const;
  void clear() const;
  String chosen_table() const;

  const HWND tableList;
  const ORLO::ListView contentList;
  DatabaseContent content_;
};
