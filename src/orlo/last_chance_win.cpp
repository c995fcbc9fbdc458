#include "orlo/last_chance.h"

#include <float.h>

#include <algorithm>

#include "orlo/exception_filter.h"
#include "orlo/message_box.h"
#include "orlo/report.h"
#include "orlo/skipper.h"

namespace ORLO {
namespace {

/// The six exceptions in the status word of the floating-point unit.
constexpr WORD kFloatExceptions = 0x3F;

// The two processors' contexts name their parts differently; a template picks what there is.

template <typename Context>
void add_to_instruction_pointer(Context& context, unsigned length) {
  if constexpr (requires { context.Eip; }) {
    context.Eip += length;
  } else {
    context.Rip += length;
  }
}

template <typename Context>
void clear_status_word(Context& context) {
  if constexpr (requires { context.ExtendedRegisters; }) {
    context.FloatSave.StatusWord &= ~DWORD{kFloatExceptions};
    // The same word is saved once more in the newer form, which wins where both are restored.
    constexpr size_t kPlace = 2;
    context.ExtendedRegisters[kPlace] &= static_cast<BYTE>(~kFloatExceptions);
  } else {
    context.FltSave.StatusWord &= static_cast<WORD>(~kFloatExceptions);
  }
}

class SystemServices : public FilterServices {
 public:
  SystemServices(CONTEXT& context, HWND window) noexcept : context_(context), window_(window) {}

  int ask(const String& text, uint32_t flags) override {
    return message_box(window_ != nullptr ? window_ : thread_main_window(), text.c_str(),
                       "Exception", flags);
  }
  int instruction_length(uintptr_t address) override { return skippable_length(address); }
  void skip(int length) override {
    add_to_instruction_pointer(context_, static_cast<unsigned>(length));
  }
  void clear_float_exceptions() override {
    clear_status_word(context_);
    // The unit itself still holds the exception and would raise it again in here. The thread gets
    // its own state back from the context.
    _fpreset();
  }
  void wait(uint32_t milliseconds) override { Sleep(milliseconds); }
  void exit_process(int exit_code) override { ExitProcess(static_cast<UINT>(exit_code)); }

 private:
  CONTEXT& context_;
  const HWND window_;
};

ProcessorException exception_of(const EXCEPTION_RECORD& record) noexcept {
  ProcessorException exception;
  exception.code = record.ExceptionCode;
  exception.flags = record.ExceptionFlags;
  exception.address = reinterpret_cast<uintptr_t>(record.ExceptionAddress);
  exception.parameter_count = record.NumberParameters;
  std::copy_n(record.ExceptionInformation,
              std::min<size_t>(record.NumberParameters, std::size(exception.parameters)),
              exception.parameters);
  return exception;
}

}  // namespace

LONG exception_filter(EXCEPTION_POINTERS* pointers, HWND window) noexcept {
  SystemServices services(*pointers->ContextRecord, window);
  const FilterResult result = filter_exception(exception_of(*pointers->ExceptionRecord), services);
  return static_cast<LONG>(result);
}

}  // namespace ORLO
