// Fails in the way that its command line names, so that the tests can look at what becomes of it.
#include <windows.h>

#include <cfloat>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "orlo/active_object.h"
#include "orlo/exception_handling.h"
#include "orlo/message_box.h"
#include "orlo/report.h"

namespace {

constexpr int kSurvived = 7;

int read_null() {
  const volatile int* volatile nowhere = nullptr;
  return *nowhere;  // NOLINT(clang-analyzer-core.NullDereference): the fault that is asked for.
}

/// A thread that does one thing.
class Worker : public ORLO::ActiveObject {
 public:
  explicit Worker(int (*work)()) : ActiveObject("Worker"), work_(work) { resume(); }
  ~Worker() override { stop(); }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  int wait_for_end() {
    stop();
    return exit_code();
  }

 protected:
  int Run() override { return work_(); }
  void FlushThread() override {}

 private:
  int (*const work_)();
};

int null_in_worker() {
  return Worker(&read_null).wait_for_end();
}

int null_in_two_workers() {
  const Worker first(&read_null);
  const Worker second(&read_null);
  Sleep(INFINITE);
  return 0;
}

int null_in_shutdown() {
  ORLO::begin_shutdown();
  return read_null();
}

int throw_nothing_known() {
  throw kSurvived;
}

int throw_library_error() {
  throw ORLO::ORLOException(ORLO::kErrorUnknownConversion);
}

/// Where nothing but the process's last filter is left to see it.
DWORD WINAPI bare_thread(void* work) {
  return static_cast<DWORD>(reinterpret_cast<int (*)()>(work)());
}

int uncaught() {
  const HANDLE thread = CreateThread(nullptr, 0, &bare_thread,
                                     reinterpret_cast<void*>(&throw_nothing_known), 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  return 0;
}

int library_error_in_worker() {
  const int result = Worker(&throw_library_error).wait_for_end();
  return result == -1 ? kSurvived : result;
}

int use_up_memory() {
  std::vector<std::unique_ptr<char[]>> blocks;
  for (;;)
    blocks.push_back(std::make_unique<char[]>(std::numeric_limits<int>::max()));
}

int out_of_memory_in_worker() {
  const int result = Worker(&use_up_memory).wait_for_end();
  return result == -1 ? kSurvived : result;
}

double divided(volatile double& by) {
  return 1.0 / by;
}

/// The same instruction fails three times.
int divide_by_zero() {
  volatile double zero = 0.0;
  _control87(0, _EM_ZERODIVIDE);
  volatile double sum = 0.0;
  for (int i = 0; i < 3; ++i)
    sum = sum + divided(zero);
  return kSurvived;
}

int ask() {
  return ORLO::message_box(nullptr, "Text & more", "Asking",
                           3 | 0x20 | 0x100 | ORLO::kBoxExtra8 | ORLO::kBoxTaskModal);
}

int tell() {
  return ORLO::message_box(nullptr, "One line\nand another", "Telling", ORLO::kBoxExclamation);
}

struct Fault {
  const char* name;
  int (*run)();
};

constexpr Fault kFaults[] = {
    {"null-in-worker", null_in_worker},
    {"null-in-two-workers", null_in_two_workers},
    {"null-in-shutdown", null_in_shutdown},
    {"uncaught", uncaught},
    {"library-error-in-worker", library_error_in_worker},
    {"out-of-memory-in-worker", out_of_memory_in_worker},
    {"divide-by-zero", divide_by_zero},
    {"ask", ask},
    {"tell", tell},
};

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR command_line, int) {
  ORLO::prepare_console();
  ORLO::install_exception_handling(true);
  for (const Fault& fault : kFaults) {
    if (std::strcmp(command_line, fault.name) == 0) return fault.run();
  }
  return -2;
}
