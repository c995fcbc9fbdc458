// The products of Windows Installer: they enrich the rows of their Uninstall keys, or make rows of
// their own.
#pragma once

#include <set>

#include "inventory/product_details.h"
#include "inventory/reader_rows.h"
#include "inventory/source_rows.h"
#include "platform/installer.h"

/// Runs on the reader thread. Failures are silent.
class InstallerSource {
 public:
  /// `window`: the main window's handle, which owns what the installer might show.
  InstallerSource(Registry& registry, const ProductServices& services, void* window);

  /// A product whose code is the name of one of `rows` changes that row; of any other a new row is
  /// delivered. `deliver` puts the row among `rows`.
  void ReadMsiProducts(ReaderRows& rows, std::set<RowKey>& unseenKeys, const RowSink& deliver);

 private:
  void read_product(const String& code, const ProductPatchMap& patches, ReaderRows& rows,
                    std::set<RowKey>& unseenKeys, const RowSink& deliver);

  Registry& registry_;
  const ProductServices services_;
  void* const window_;
  void* ui_owner_ = nullptr;  ///< for set_internal_ui(), which may write to it at any time
};
