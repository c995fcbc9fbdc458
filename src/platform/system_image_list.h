// Image lists as the window system has them. Only for the target.
#pragma once

// First: commctrl.h leaves out what works on streams where they aren't known.
#include <objidl.h>

#include <utility>

#include "orlo/window_handles.h"
#include "platform/image_list.h"

using OwnedImageList =
    ORLO::OwnedHandle<ORLO::NullableHandleTraits<HIMAGELIST, &ImageList_Destroy>>;

/// Without a handle there are no images and nothing can be appended or written.
class SystemImageList final : public ImageList {
 public:
  explicit SystemImageList(OwnedImageList list) noexcept : list_(std::move(list)) {}

  HIMAGELIST handle() const noexcept { return list_.get(); }

  int append(const Icon& icon) override;
  int count() const override;
  Written write(std::string& bytes) const override;

 private:
  OwnedImageList list_;
};

/// All lists that it makes are SystemImageLists.
class SystemImageLists final : public ImageLists {
 public:
  /// The ids of bitmaps in `module`'s resources: the leftmost 16 by 16 pixels of each are the
  /// default image and its mask.
  SystemImageLists(HINSTANCE module, unsigned bitmap, unsigned mask) noexcept
      : module_(module), bitmap_(bitmap), mask_(mask) {}

  std::unique_ptr<ImageList> fresh() override;
  std::unique_ptr<ImageList> read(const std::string& bytes, bool& other_size) override;

 private:
  bool add_default(HIMAGELIST list) const;

  const HINSTANCE module_;
  const unsigned bitmap_;
  const unsigned mask_;
};

/// All images of a bitmap in `module`'s resources, which holds them side by side, 16 pixels wide,
/// on magenta; `side` pixels wide and high in the list, with hard edges. Null on failure.
OwnedImageList load_marks(HINSTANCE module, unsigned bitmap, int side);
