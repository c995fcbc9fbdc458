// A window that answers for its user, and packages to act on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "actions/action_frame.h"
#include "inventory/entry.h"

class RecordingFrame : public ActionFrame {
 public:
  void* owner() override { return this; }
  bool confirm(const String& text, const String& title) override {
    return box("confirm", text, title);
  }
  bool ask(const String& text, const String& title) override { return box("ask", text, title); }
  void warn(const String& text, const String& title) override { box("warn", text, title); }
  void begin_wait_cursor() override { ++cursors; }
  void end_wait_cursor() noexcept override { --cursors; }
  unsigned refreshCount() const override { return refresh_count; }
  bool closing() const override { return is_closing; }
  void requestRefresh() override {
    ++refresh_count;
    ++refreshes;
  }

  bool answer = true;
  std::function<void()> during_box;
  std::vector<std::string> boxes;  ///< "confirm TITLE: TEXT"
  int cursors = 0;
  unsigned refresh_count = 5;
  int refreshes = 0;
  bool is_closing = false;

 private:
  bool box(const char* kind, const String& text, const String& title) {
    boxes.emplace_back(String::formatted("%s %s: %s", kind, title, text).c_str());
    if (during_box) during_box();
    return answer;
  }
};

inline UninstallEntry msi_entry() {
  UninstallEntry entry;
  entry.name = "{1111-2222}";
  entry.keyName = "{1111-2222}";
  entry.displayName = "Birch";
  entry.MSI = true;
  entry.HKEY_ROOT = -2147483646;
  return entry;
}

inline UninstallEntry plain_entry() {
  UninstallEntry entry;
  entry.name = "birch";
  entry.keyName = "birch_is1";
  entry.displayName = "Birch";
  entry.uninstallCmd = "C:\\Birch\\un.exe /u";
  entry.modifyCmd = "C:\\Birch\\un.exe /m";
  entry.HKEY_ROOT = -2147483646;
  return entry;
}
