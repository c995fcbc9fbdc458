// What a window procedure does around each call into a controller.
#pragma once

#include <exception>

#include "orlo/controller.h"
#include "orlo/window_reports.h"

namespace ORLO {

/// One message on its way through a controller. Nested calls form a chain, so that a controller
/// whose window dies below its own feet is deleted only when its last handler has returned.
class ControllerCall {
 public:
  ControllerCall(Controller& controller, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
  ~ControllerCall();
  ControllerCall(const ControllerCall&) = delete;
  ControllerCall& operator=(const ControllerCall&) = delete;

  /// Unpacks the message and makes the virtual call. `handled` is what a size or paint message
  /// yields.
  LRESULT route(LRESULT handled);
  /// The window goes away: the controller is deleted at the end of the outermost call.
  void dispose() noexcept;

 private:
  friend class Controller;
  Controller* controller_;
  ControllerCall* const outer_;
  const Controller::Message message_;
};

/// The barrier between handlers and the system: no failure passes, each one is reported. Yields 0
/// after a failure.
template <typename Call, typename Report>
LRESULT guarded_call(const Call& call, const Report& report) noexcept {
  try {
    return call();
  } catch (const Exception& exception) {
    report(exception);
  } catch (const ComError& error) {
    report(error);
  } catch (const std::exception& exception) {
    report(exception);
  } catch (...) {
    report(UserException("unknown exception"));
  }
  return 0;
}

/// For a window procedure.
template <typename Call>
LRESULT guarded(HWND window, UINT message, const Call& call) noexcept {
  return guarded_call(call,
                      [&](const auto& failure) { report_in_window(failure, window, message); });
}

}  // namespace ORLO
