#include "orlo/exception.h"

#include <atomic>
#include <new>
#include <vector>

#include "orlo/core_module.h"
#include "orlo/internet_response.h"

namespace ORLO {
namespace {

constexpr const char* kGeneric = "generic exception";
constexpr uint32_t kErrorInsufficientBuffer = 122;
constexpr uint32_t kErrorInternetExtended = 12003;

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

String unknown_error_text(uint32_t code) {
  return String::formatted("unknown error 0x%08X", code);
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
  return text_once([this] {
    return code != 0 ? String::formatted("exception code %d", code) : String(kGeneric);
  });
}

const char* SDKException::what() const {
  return text_once([this] { return system_error_text(code); });
}

LWE::LWE() : SDKException(last_error()) {}

const char* INetException::what() const {
  return text_once([this] {
    return code == kErrorInternetExtended ? internet_response_text(&read_internet_response)
                                          : system_error_text(code);
  });
}

LIE::LIE() : INetException(last_error()) {}

const char* UserException::what() const {
  return message_.c_str();
}

const char* ORLOException::what() const {
  return text_once([this] {
    const auto module = core_module();
    if (module == nullptr) return String::formatted("error 0x%08X", code);
    String text;
    return module->message(code, text) ? text : unknown_error_text(code);
  });
}

const char* StructuredException::what() const {
  return text_once([this] { return String::formatted("structured exception code 0x%08X", code); });
}

String internet_response_text(const InternetResponseReader& read) {
  char room_for_end = '\0';
  auto size = static_cast<uint32_t>(sizeof room_for_end);
  uint32_t error = read(&room_for_end, size);
  if (error == 0) return String();
  if (error != kErrorInsufficientBuffer) throw LWE(error);
  // One byte more than is told of: the size may or may not count the end.
  std::vector<char> buffer(size_t{size} + 1);
  error = read(buffer.data(), size);
  if (error != 0) throw LWE(error);
  return buffer.data();
}

void throw_out_of_memory() {
  const std::new_handler handler = std::get_new_handler();
  if (handler != nullptr) handler();
  throw std::bad_alloc();
}

void set_exception_mode(bool on) noexcept {
  throws_tolerated_failures = on;
}
bool exception_mode() noexcept {
  return throws_tolerated_failures;
}

String system_error_text(uint32_t code) {
  String text;
  return system_message(code, text) ? text : unknown_error_text(code);
}

String exception_text(const Exception& exception) {
  // The wording is German whatever the program's language is; it is the fixed fallback text.
  String text = core_string(kCoreFailure, "Ein Fehler trat auf");
  text.append(core_formatted(kCoreDuring, " w\xe4hrend %hs", context_text(exception.context)));
  text.appendf(":\n%hs", exception.what());
  return text;
}

}  // namespace ORLO
