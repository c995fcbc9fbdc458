#include "orlo/exception_handling.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <exception>

#include "orlo/exception_filter.h"
#include "orlo/last_chance.h"

namespace ORLO {
namespace {

/// Kept from the first installation.
LPTOP_LEVEL_EXCEPTION_FILTER previous_filter = nullptr;
bool filter_kept = false;

/// A C++ exception that nobody catches never becomes one of the system's in this compiler. Made one
/// here, it takes the same way as all others.
[[noreturn]] void raise_uncaught() {
  RaiseException(kExceptionCpp, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  // Reached only under a debugger that has swallowed it.
  TerminateProcess(GetCurrentProcess(), kExceptionCpp);
  std::abort();
}

BOOL WINAPI decline_console_event(DWORD) {
  return FALSE;
}

void make_binary(std::FILE* stream) {
  // A program without a console has streams without a file.
  const int file = _fileno(stream);
  if (file >= 0) _setmode(file, _O_BINARY);
}

}  // namespace

LONG WINAPI last_chance_filter(EXCEPTION_POINTERS* pointers) {
  pointers->ExceptionRecord->ExceptionFlags |= kLastChance;
  const LONG result = exception_filter(pointers, nullptr);
  if (result != EXCEPTION_CONTINUE_SEARCH || previous_filter == nullptr) return result;
  return previous_filter(pointers);
}

void install_exception_filter() {
  if (filter_kept) return;
  filter_kept = true;
  previous_filter = SetUnhandledExceptionFilter(&last_chance_filter);
  std::set_terminate(&raise_uncaught);
}

void prepare_console() {
  SetConsoleCtrlHandler(&decline_console_event, TRUE);
  for (std::FILE* const stream : {stdin, stdout, stderr})
    make_binary(stream);
}

}  // namespace ORLO
