// Reports collected instead of shown, for tests.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orlo/report.h"

namespace ORLO {

/// Takes the box's place for its scope.
class TestReports {
 public:
  struct Report {
    std::string caption;
    std::string text;
    bool operator==(const Report&) const = default;
  };

  TestReports() {
    set_report_sink([this](const String& caption, const String& text) {
      shown.push_back({caption.c_str(), text.c_str()});
      if (while_open) while_open();
    });
  }
  ~TestReports() { set_report_sink({}); }
  TestReports(const TestReports&) = delete;
  TestReports& operator=(const TestReports&) = delete;

  std::vector<Report> shown;
  /// Runs while the box would be open.
  std::function<void()> while_open;
};

/// The program shuts down for this scope.
class TestShutdown {
 public:
  TestShutdown() { begin_shutdown(); }
  ~TestShutdown() { take_back_shutdown(); }
  TestShutdown(const TestShutdown&) = delete;
  TestShutdown& operator=(const TestShutdown&) = delete;
};

}  // namespace ORLO
