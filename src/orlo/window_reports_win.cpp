#include "orlo/window_reports.h"

namespace ORLO {
namespace {

/// Validates a window that couldn't be painted, around a scope.
class PaintedScope {
 public:
  PaintedScope(HWND window, UINT message) noexcept
      : window_(message == WM_PAINT ? window : nullptr) {
    validate();
  }
  ~PaintedScope() { validate(); }
  PaintedScope(const PaintedScope&) = delete;
  PaintedScope& operator=(const PaintedScope&) = delete;

 private:
  void validate() const noexcept {
    if (window_ != nullptr) ValidateRect(window_, nullptr);
  }

  const HWND window_;
};

}  // namespace

void report_in_window(const Exception& exception, HWND window, UINT message) noexcept {
  const PaintedScope painted(window, message);
  report_exception(exception, window);
}

void report_in_window(const ComError& error, HWND window, UINT message) noexcept {
  const PaintedScope painted(window, message);
  report_com_error(error, window);
}

void report_in_window(const std::exception& exception, HWND window, UINT message) noexcept {
  const PaintedScope painted(window, message);
  report_std_exception(exception, window);
}

void report_in_message(const Exception& exception, const MSG& message) noexcept {
  report_in_window(exception, message.hwnd, message.message);
}

void report_in_message(const ComError& error, const MSG& message) noexcept {
  report_in_window(error, message.hwnd, message.message);
}

void report_in_message(const std::exception& exception, const MSG& message) noexcept {
  report_in_window(exception, message.hwnd, message.message);
}

}  // namespace ORLO
