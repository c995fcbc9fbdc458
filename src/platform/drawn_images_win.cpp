#include "platform/drawn_images.h"

namespace {

/// Ternary raster operation: what the target has and the source hasn't.
constexpr DWORD kTargetAndNotSource = 0x00220326;

using OwnedDc = ORLO::OwnedHandle<ORLO::NullableHandleTraits<HDC, &DeleteDC>>;

/// A picture selected into a device context of its own.
class Canvas {
 public:
  explicit Canvas(HBITMAP bitmap) noexcept
      : dc_(CreateCompatibleDC(nullptr)), former_(SelectObject(dc_.get(), bitmap)) {}
  ~Canvas() { SelectObject(dc_.get(), former_); }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  HDC dc() const noexcept { return dc_.get(); }

 private:
  const OwnedDc dc_;
  const HGDIOBJ former_;
};

ORLO::OwnedBitmap load_bitmap(HINSTANCE module, unsigned id) noexcept {
  return ORLO::OwnedBitmap(static_cast<HBITMAP>(
      LoadImageA(module, MAKEINTRESOURCEA(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
}

ORLO::OwnedBitmap make_bitmap(const SIZE& size, bool mask) noexcept {
  if (mask) return ORLO::OwnedBitmap(CreateBitmap(size.cx, size.cy, 1, 1, nullptr));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, size.cx, size.cy, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  return ORLO::OwnedBitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
}

}  // namespace

int count_drawn_images(HINSTANCE module, unsigned id) noexcept {
  const ORLO::OwnedBitmap drawn = load_bitmap(module, id);
  BITMAP info{};
  if (GetObjectA(drawn.get(), sizeof info, &info) == 0) return 0;
  return static_cast<int>(info.bmWidth) / kDrawnSide;
}

ORLO::OwnedBitmap load_drawn_images(HINSTANCE module, unsigned id, int count, const SIZE& size,
                                    bool mask) noexcept {
  const ORLO::OwnedBitmap drawn = load_bitmap(module, id);
  ORLO::OwnedBitmap images = make_bitmap({size.cx * count, size.cy}, mask);
  if (!drawn || !images) return ORLO::OwnedBitmap();
  const Canvas source(drawn.get());
  const Canvas target(images.get());
  SetStretchBltMode(target.dc(), COLORONCOLOR);
  // One by one: how a whole row of them is stretched would differ from image to image.
  for (int i = 0; i < count; ++i) {
    if (!StretchBlt(target.dc(), i * size.cx, 0, size.cx, size.cy, source.dc(), i * kDrawnSide, 0,
                    kDrawnSide, kDrawnSide, SRCCOPY)) {
      return ORLO::OwnedBitmap();
    }
  }
  return images;
}

bool blacken_see_through(HBITMAP images, HBITMAP mask, const SIZE& size) noexcept {
  const Canvas source(mask);
  const Canvas target(images);
  // The colours that the mask's two values stand for.
  SetTextColor(target.dc(), RGB(0, 0, 0));
  SetBkColor(target.dc(), RGB(255, 255, 255));
  return BitBlt(target.dc(), 0, 0, size.cx, size.cy, source.dc(), 0, 0, kTargetAndNotSource) !=
         FALSE;
}
