#include <gtest/gtest.h>
#include <windows.h>

#include "orlo/dpi.h"

namespace ORLO {
namespace {

TEST(Dpi, ScalesAsTheSystemDoes) {
  for (const int dpi : {96, 120, 144, 168, 192, 480}) {
    for (int length = -400; length <= 400; ++length)
      ASSERT_EQ(scale_up(length, dpi), MulDiv(length, dpi, 96)) << dpi;
  }
}

TEST(Dpi, OfTheScreenIsThatOfItsFonts) {
  const HDC screen = GetDC(nullptr);
  EXPECT_EQ(screen_dpi(), GetDeviceCaps(screen, LOGPIXELSY));
  ReleaseDC(nullptr, screen);
  EXPECT_GE(screen_dpi(), 96);
}

}  // namespace
}  // namespace ORLO
