#include "view/help.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct HelpCall {
  HWND caller;
  std::string file;
  UINT command;
  DWORD_PTR data;
};

std::vector<HelpCall> calls;

HWND WINAPI record(HWND caller, LPCSTR file, UINT command, DWORD_PTR data) {
  calls.push_back({caller, file, command, data});
  return nullptr;
}

TEST(Help, ShowsTheContentsOfTheHelpFileAboveItsCaller) {
  calls.clear();
  const HWND caller = GetDesktopWindow();
  open_help(caller, &record);
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].caller, caller);
  EXPECT_EQ(calls[0].file, "zolvane.chm");
  EXPECT_EQ(calls[0].command, 1u);
  EXPECT_EQ(calls[0].data, 0u);
}

}  // namespace
