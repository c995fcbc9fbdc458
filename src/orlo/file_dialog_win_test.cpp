#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "orlo/file_dialog.h"
#include "orlo/orlowin.h"
// This needs what orlowin.h brings.
#include <commdlg.h>

namespace ORLO {
namespace {

/// What the dialog was asked for; its pointers are dead by the time a test looks.
struct Asked {
  DWORD size;
  std::string filter;
  std::string file;
  DWORD room;
  std::string title;
  std::string extension;
  DWORD flags;
  HWND owner;
};
Asked asked;
bool user_agrees;

BOOL WINAPI fake_dialog(OPENFILENAMEA* request) {
  const char* end = request->lpstrFilter;
  while (*end != '\0')
    end += std::strlen(end) + 1;
  asked = {request->lStructSize,
           std::string(request->lpstrFilter, end + 1),
           request->lpstrFile,
           request->nMaxFile,
           request->lpstrTitle != nullptr ? request->lpstrTitle : "(none)",
           request->lpstrDefExt != nullptr ? request->lpstrDefExt : "(none)",
           request->Flags,
           request->hwndOwner};
  if (user_agrees) lstrcpynA(request->lpstrFile, "C:\\chosen.xls", 20);
  return user_agrees;
}

class FakeFunctions : public ModuleFunctions {
 public:
  Function find(const char* module, const char* name) override {
    asked_for = std::string(module) + "." + name;
    return there ? reinterpret_cast<Function>(&fake_dialog) : nullptr;
  }
  bool there = true;
  std::string asked_for;
};

SaveFileDialog export_dialog() {
  SaveFileDialog dialog;
  dialog.title = "Save it";
  dialog.file_name = "Book.xls";
  dialog.default_extension = ".xls";
  dialog.filter = "Sheet|*.xls|";
  dialog.flags = OFN_OVERWRITEPROMPT;
  return dialog;
}

TEST(SaveFileDialog, HandsTheSystemWhatItNeeds) {
  FakeFunctions functions;
  user_agrees = true;
  const HWND owner = GetDesktopWindow();
  EXPECT_STREQ(export_dialog().ask(owner, functions).c_str(), "C:\\chosen.xls");
  EXPECT_EQ(functions.asked_for, "COMDLG32.GetSaveFileNameA");
  EXPECT_EQ(asked.size, sizeof(void*) == 4 ? 88u : sizeof(OPENFILENAMEA));
  EXPECT_EQ(asked.filter, std::string("Sheet\0*.xls\0\0", 13));
  EXPECT_EQ(asked.file, "Book.xls");
  EXPECT_EQ(asked.room, 1024u);
  EXPECT_EQ(asked.title, "Save it");
  EXPECT_EQ(asked.extension, ".xls");
  EXPECT_EQ(asked.flags, static_cast<DWORD>(OFN_OVERWRITEPROMPT));
  EXPECT_EQ(asked.owner, owner);
}

TEST(SaveFileDialog, CancelledGivesNoName) {
  FakeFunctions functions;
  user_agrees = false;
  EXPECT_TRUE(export_dialog().ask(nullptr, functions).empty());
}

TEST(SaveFileDialog, WhatIsEmptyIsLeftToTheSystem) {
  FakeFunctions functions;
  user_agrees = false;
  SaveFileDialog().ask(nullptr, functions);
  EXPECT_EQ(asked.title, "(none)");
  EXPECT_EQ(asked.extension, "(none)");
  EXPECT_EQ(asked.file, "");
}

TEST(SaveFileDialog, NameTooLongForTheBoxIsCut) {
  FakeFunctions functions;
  user_agrees = false;
  SaveFileDialog dialog;
  dialog.file_name = std::string(3000, 'n');
  dialog.ask(nullptr, functions);
  EXPECT_EQ(asked.file, std::string(1023, 'n'));
}

TEST(SaveFileDialog, SystemWithoutTheDialogIsAnErrorOfTheLibrary) {
  FakeFunctions functions;
  functions.there = false;
  EXPECT_THROW(export_dialog().ask(nullptr, functions), ORLOException);
}

TEST(SystemFunctions, FindsWhatIsThereAndNothingElse) {
  EXPECT_NE(system_functions().find("COMDLG32", "GetSaveFileNameA"), nullptr);
  EXPECT_NE(system_functions().find("COMCTL32", "_TrackMouseEvent"), nullptr);
  EXPECT_EQ(system_functions().find("COMDLG32", "NoSuchFunction"), nullptr);
  EXPECT_EQ(system_functions().find("nosuchmodule", "GetSaveFileNameA"), nullptr);
}

}  // namespace
}  // namespace ORLO
