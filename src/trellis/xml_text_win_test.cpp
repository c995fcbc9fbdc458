// The conversions beside the platform's own.
#include <windows.h>

#include <gtest/gtest.h>

#include <random>

#include "trellis/xml_text.h"

namespace Trellis {
namespace {

std::string converted(const std::string& text, UINT from, UINT to) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(text.size() + 1, L'\0');
  const int units = MultiByteToWideChar(from, 0, text.data(), length, wide.data(), length + 1);
  std::string result(static_cast<size_t>(units) * 4 + 1, '\0');
  const int bytes = WideCharToMultiByte(to, 0, wide.data(), units, result.data(),
                                        static_cast<int>(result.size()), nullptr, nullptr);
  result.resize(static_cast<size_t>(bytes));
  return result;
}

TEST(Utf8, AgreesWithThePlatformOnRandomBytes) {
  std::mt19937 random(5);
  // Mostly bytes that mean something beside each other.
  const std::string common("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xED\xA0\xE0\x90\xF4\xC0\xFF\0",
                           18);
  for (int round = 0; round < 20000; ++round) {
    std::string text(1 + random() % 8, '\0');
    for (char& c : text)
      c = random() % 4 != 0 ? common[random() % common.size()] : static_cast<char>(random());
    text += "end";  // a lead byte nearer to the end than its length is another matter there
    EXPECT_EQ(from_utf8(text), converted(text, CP_UTF8, CP_ACP)) << testing::PrintToString(text);
    EXPECT_EQ(to_utf8(text.data(), text.size()), converted(text, CP_ACP, CP_UTF8));
    if (HasFailure()) break;
  }
}

}  // namespace
}  // namespace Trellis
