// A real program for tests of what waits for its end.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "orlo/kernel_handles.h"

/// A program, "cmd.exe", that reads a pipe nobody writes to: it runs until end(), or until this
/// goes. One at a time.
class HeldProgram {
 public:
  HeldProgram() : pipe_(make_pipe()) { EXPECT_TRUE(pipe_); }
  static std::string arguments() { return "/c type " + pipe_name(); }
  void end() { pipe_.reset(); }

 private:
  static std::string pipe_name() {
    return "\\\\.\\pipe\\zolvane-held-" + std::to_string(GetCurrentProcessId());
  }
  static HANDLE make_pipe() {
    return CreateNamedPipeA(pipe_name().c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE,
                            PIPE_UNLIMITED_INSTANCES, 64, 64, 0, nullptr);
  }

  ORLO::OwnedFile pipe_;
};
