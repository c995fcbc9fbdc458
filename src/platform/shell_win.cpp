#include "platform/shell.h"

#include <windows.h>

#include <shellapi.h>

#include <utility>

#include "orlo/kernel_handles.h"

namespace {

class Process final : public ORLO::Waitable {
 public:
  explicit Process(ORLO::OwnedKernelHandle handle) : handle_(std::move(handle)) {}
  void* native() const noexcept override { return handle_.get(); }

 protected:
  bool try_take() noexcept override {
    return WaitForSingleObject(handle_.get(), 0) == WAIT_OBJECT_0;
  }

 private:
  const ORLO::OwnedKernelHandle handle_;
};

/// Without this a shell that refuses says so in a box of its own, and returns when it is answered.
constexpr ULONG kSilent = SEE_MASK_FLAG_NO_UI;

/// False if the shell refuses. `process` receives a handle only where the mask asks for one.
bool execute(const ShellStart& start, ULONG mask, ORLO::OwnedKernelHandle& process) {
  if (!can_ask_shell(start.file)) return false;
  SHELLEXECUTEINFOA request{};
  request.cbSize = sizeof request;
  request.fMask = mask | kSilent;
  request.hwnd = static_cast<HWND>(start.owner);
  request.lpVerb = start.verb;
  request.lpFile = start.file;
  request.lpParameters = start.arguments;
  request.nShow = start.show;
  const bool ok = ShellExecuteExA(&request) != FALSE;
  if ((mask & SEE_MASK_NOCLOSEPROCESS) != 0) process.reset(request.hProcess);
  return ok;
}

class SystemShell final : public Shell {
 public:
  bool open(const ShellStart& start) override {
    ORLO::OwnedKernelHandle none;
    return execute(start, 0, none);
  }

  Started open_process(const ShellStart& start) override {
    ORLO::OwnedKernelHandle process;
    if (!execute(start, SEE_MASK_NOCLOSEPROCESS, process)) return {};
    if (!process) return {true, nullptr};
    return {true, std::make_unique<Process>(std::move(process))};
  }
};

}  // namespace

std::unique_ptr<Shell> make_system_shell() {
  return std::make_unique<SystemShell>();
}
