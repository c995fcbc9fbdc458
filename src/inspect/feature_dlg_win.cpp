#include "inspect/feature_dlg.h"

#include "orlo/dpi.h"
#include "orlo/wait_cursor.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"

namespace {

constexpr ORLO::ResizeRule kResizeRules[] = {
    {IDC_FEATURE_TREE, ORLO::kMoveRight | ORLO::kMoveBottom},
};
constexpr int kExtraHeight = 200;
/// In pixels of a screen of 96 dots per inch.
constexpr int kMarkSide = 16;

}  // namespace

FeatureDlg::FeatureDlg(HWND window, const Resources& resources, const UninstallEntry& package,
                       Installer& installer, Registry& registry)
    : InspectionDlg(window, resources, package, package.displayName),
      tree(control(IDC_FEATURE_TREE)),
      images(load_marks(resources.module(), IDB_PACKAGES,
                        ORLO::scale_up(kMarkSide, ORLO::screen_dpi()))) {
  lay_out(kResizeRules, 0, kExtraHeight);
  SendMessageA(tree, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images.get()));
  const ORLO::WaitCursor wait;
  fill(read_feature_tree(installer, registry, entry.name));
}

void FeatureDlg::fill(const std::vector<FeatureNode>& nodes) const {
  const ORLO::FrozenDrawing frozen(tree);
  std::vector<HTREEITEM> items;
  items.reserve(nodes.size());
  for (const FeatureNode& node : nodes) {
    const bool at_root = node.parent < 0;
    const HTREEITEM parent = at_root ? TVI_ROOT : items[static_cast<size_t>(node.parent)];
    items.push_back(insert(node, parent));
    if (!at_root) SendMessageA(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(parent));
  }
}

HTREEITEM FeatureDlg::insert(const FeatureNode& node, HTREEITEM parent) const {
  TVINSERTSTRUCTA item = {};
  item.hParent = parent;
  item.hInsertAfter = TVI_LAST;
  item.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
  // The control only reads it.
  item.item.pszText = const_cast<char*>(node.name.c_str());
  item.item.iImage = node.mark;
  item.item.iSelectedImage = node.mark;
  return reinterpret_cast<HTREEITEM>(
      SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
}
