// The dialog that shows the features of an installed product as a tree.
#pragma once

#include "inspect/feature_tree.h"
#include "inspect/inspection_dlg.h"
#include "platform/system_image_list.h"

class FeatureDlg : public InspectionDlg {
 public:
  /// Reads all that it shows.
  FeatureDlg(HWND window, const Resources& resources, const UninstallEntry& package,
             Installer& installer, Registry& registry);

 private:
  void fill(const std::vector<FeatureNode>& nodes) const;
  HTREEITEM insert(const FeatureNode& node, HTREEITEM parent) const;

  const HWND tree;
  const OwnedImageList images;
};
