#include "orlo/exception.h"

#include <atomic>

namespace ORLO {
namespace {

thread_local const ExceptionContext* innermost = nullptr;
std::atomic<bool> throws_tolerated_failures{false};

const ExceptionContext& bottom() noexcept {
  // Never unlinked and never destroyed: exceptions may be built while statics go down.
  static const ExceptionContext* const context = [] {
    const ExceptionContext* const saved = innermost;
    // Without memory for this there is nothing left to report: to end is right.
    // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new)
    const auto* made = new ExceptionContext("-NO-CONTEXT-");
    innermost = saved;
    return made;
  }();
  return *context;
}

}  // namespace

ExceptionContext::ExceptionContext(const char* text, const String& object)
    : text_(text), object_(object), previous_(innermost), linked_(true) {
  innermost = this;
}

ExceptionContext::ExceptionContext(const ExceptionContext& other)
    : text_(other.text_), object_(other.object_) {}

ExceptionContext::~ExceptionContext() {
  if (linked_) innermost = previous_;
}

const ExceptionContext& ExceptionContext::current() noexcept {
  return innermost != nullptr ? *innermost : bottom();
}

String context_text(const ExceptionContext& context) {
  if (context.object().empty()) return context.text();
  return String::formatted("%s\nObject: %s", context.text(), context.object());
}

const char* Exception::what() const {
  if (message_.empty()) {
    if (code != 0) {
      message_.printf("exception code %d", code);
    } else {
      message_ = "generic exception";
    }
  }
  return message_.c_str();
}

const char* SDKException::what() const {
  if (message_.empty()) message_ = system_error_text(code);
  return message_.c_str();
}

LWE::LWE() : SDKException(last_error()) {}

const char* UserException::what() const {
  return message_.c_str();
}

const char* ORLOException::what() const {
  if (message_.empty()) message_.printf("error 0x%08X", code);
  return message_.c_str();
}

void set_exception_mode(bool on) noexcept {
  throws_tolerated_failures = on;
}
bool exception_mode() noexcept {
  return throws_tolerated_failures;
}

String exception_text(const Exception& exception) {
  // The wording is German whatever the program's language is; it is the fixed fallback text.
  String text = "Ein Fehler trat auf";
  text.appendf(" w\xe4hrend %hs", context_text(exception.context));
  text.appendf(":\n%hs", exception.what());
  return text;
}

}  // namespace ORLO
