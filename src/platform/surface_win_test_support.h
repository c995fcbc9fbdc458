// A surface to draw on, whose pixels can be looked at.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "orlo/window_handles.h"

using OwnedDc = ORLO::OwnedHandle<ORLO::NullableHandleTraits<HDC, &DeleteDC>>;

/// 0xRRGGBB.
inline uint32_t rgb(COLORREF color) {
  return static_cast<uint32_t>(GetRValue(color) << 16 | GetGValue(color) << 8 | GetBValue(color));
}

/// 32 by 32 pixels to draw on.
class Surface {
 public:
  static constexpr int kSize = 32;

  explicit Surface(COLORREF background) : dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, kSize, -kSize, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    bitmap_.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    former_ = SelectObject(dc_.get(), bitmap_.get());
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x)
        SetPixel(dc_.get(), x, y, background);
    }
  }
  ~Surface() { SelectObject(dc_.get(), former_); }
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  HDC dc() const { return dc_.get(); }
  /// 0xRRGGBB.
  uint32_t pixel(int x, int y) const { return rgb(GetPixel(dc_.get(), x, y)); }

 private:
  const OwnedDc dc_;
  ORLO::OwnedBitmap bitmap_;
  HGDIOBJ former_ = nullptr;
};
