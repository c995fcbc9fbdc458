#include "inventory/installer_source.h"

InstallerSource::InstallerSource(Registry& registry, const ProductServices& services, void* window)
    : registry_(registry), services_(services), window_(window) {}

void InstallerSource::ReadMsiProducts(ReaderRows& rows, std::set<RowKey>& unseenKeys,
                                      const RowSink& deliver) {
  ui_owner_ = window_;
  services_.installer.set_internal_ui(kInstallerUiNone, &ui_owner_);
  PatchMap patches;
  ProductPatchMap product_patches;
  LoadInstallerPatches(registry_, patches, product_patches);
  InstallerName code = "";
  for (uint32_t index = 0; services_.installer.product_at(index, code) != kInstallerNoMoreItems;
       ++index) {
    // After a failure the code is what the call has left: mostly the one before it, whose product
    // is read once more.
    read_product(String(code), product_patches, rows, unseenKeys, deliver);
  }
}

void InstallerSource::read_product(const String& code, const ProductPatchMap& patches,
                                   ReaderRows& rows, std::set<RowKey>& unseenKeys,
                                   const RowSink& deliver) {
  // Read aside, as this takes its time: a Refresh may empty the rows meanwhile.
  if (auto known = rows.find(code)) {
    ReadProductDetails(services_, code, patches, *known);
    rows.put_back(*known);
    return;
  }
  Row row = make_source_row("MSI");
  cell(row, PackageColumn::name).text = code;
  ReadProductDetails(services_, code, patches, row);
  deliver_row(row, deliver, unseenKeys);
}
