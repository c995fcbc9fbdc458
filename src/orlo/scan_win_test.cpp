#include <gtest/gtest.h>
#include <windows.h>

#include "orlo/scan.h"
#include "orlo/scan_table_test_support.h"

namespace ORLO {
namespace {

constexpr int kUntouched = 77;

using Sscanf = int(__cdecl*)(const char* text, const char* pattern, ...);

/// The runtime's own function: by its name one would get the compiler's stdio replacement.
Sscanf runtime_sscanf() {
  const FARPROC address = GetProcAddress(GetModuleHandleA("msvcrt.dll"), "sscanf");
  return reinterpret_cast<Sscanf>(reinterpret_cast<void*>(address));
}

// How often a pattern was satisfied, so that the comparison can't pass on failures alone.
int filled_by_both = 0;

TEST(Scan, ReadsNumbersAsTheRuntimeDoes) {
  filled_by_both = 0;
  for (const char* text : kScanTexts) {
    for (const char* pattern : kNumberPatterns) {
      SCOPED_TRACE(testing::Message() << '"' << text << "\" by " << pattern);
      int ours[3] = {kUntouched, kUntouched, kUntouched};
      int theirs[3] = {kUntouched, kUntouched, kUntouched};
      const int filled = scan(text, pattern, {ours[0], ours[1], ours[2]});
      EXPECT_EQ(filled, runtime_sscanf()(text, pattern, &theirs[0], &theirs[1], &theirs[2]));
      for (int i = 0; i < 3; ++i)
        EXPECT_EQ(ours[i], theirs[i]);
      filled_by_both += filled;
    }
  }
  EXPECT_GT(filled_by_both, 500);
}

TEST(Scan, ReadsTextsAsTheRuntimeDoes) {
  filled_by_both = 0;
  for (const char* text : kScanTexts) {
    for (const char* pattern : kTextPatterns) {
      SCOPED_TRACE(testing::Message() << '"' << text << "\" by " << pattern);
      char ours[2][8] = {"@", "@"};
      char theirs[2][8] = {"@", "@"};
      const int filled = scan(text, pattern, {ours[0], ours[1]});
      EXPECT_EQ(filled, runtime_sscanf()(text, pattern, theirs[0], theirs[1]));
      for (int i = 0; i < 2; ++i)
        EXPECT_STREQ(ours[i], theirs[i]);
      filled_by_both += filled;
    }
  }
  EXPECT_GT(filled_by_both, 500);
}

}  // namespace
}  // namespace ORLO
