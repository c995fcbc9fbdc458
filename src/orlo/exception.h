// The exceptions of the program. Each takes a snapshot of what the program was doing.
#pragma once

#include <cstdint>

#include "orlo/rstring.h"

namespace ORLO {

/// Says what is being done, and to which object, for the scope it stands in. Used on the stack,
/// strictly nested; each thread has a chain of its own.
class ExceptionContext {
 public:
  explicit ExceptionContext(const char* text, const String& object = String());
  /// A copy isn't linked into the chain.
  ExceptionContext(const ExceptionContext& other);
  ExceptionContext& operator=(const ExceptionContext&) = delete;
  ~ExceptionContext();

  const char* text() const noexcept { return text_; }
  const String& object() const noexcept { return object_; }

  /// The innermost context of this thread; "-NO-CONTEXT-" if there is none.
  static const ExceptionContext& current() noexcept;

 private:
  const char* text_;
  String object_;
  const ExceptionContext* previous_ = nullptr;
  bool linked_ = false;
};

/// The text, with the object on a second line if there is one.
String context_text(const ExceptionContext& context);

/// Caught by reference. A copy has a text and a context of its own.
class Exception {
 public:
  explicit Exception(uint32_t error_code = 0) : code(error_code) {}
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = delete;
  virtual ~Exception() = default;

  /// 8-bit text, built on the first call and owned by the exception.
  virtual const char* what() const;

  const uint32_t code;
  const ExceptionContext context{ExceptionContext::current()};

 protected:
  template <typename Build>
  const char* text_once(const Build& build) const {
    if (!built_) message_ = build();
    built_ = true;
    return message_.c_str();
  }

  mutable String message_;
  mutable bool built_ = false;
};

/// An error code of the operating system.
class SDKException : public Exception {
 public:
  using Exception::Exception;
  const char* what() const override;
};

/// The last error, taken at the throw site.
class LWE : public SDKException {
 public:
  LWE();
  /// For a failure whose code had to be taken before something else could change it.
  explicit LWE(uint32_t error) : SDKException(error) {}
};

/// An error code of the internet functions. If the server itself has said what was wrong, its words
/// are the text; if they can't be read, what() throws LWE.
class INetException : public SDKException {
 public:
  using SDKException::SDKException;
  const char* what() const override;
};

/// The last error, taken at the throw site after a failed call of an internet function.
class LIE : public INetException {
 public:
  LIE();
};

/// Carries a ready text.
class UserException : public Exception {
 public:
  explicit UserException(const String& text) {
    message_ = text;
    built_ = true;
  }
  const char* what() const override;
};

/// An error code of the foundation itself, 0x42FF0001 and up.
class ORLOException : public Exception {
 public:
  using Exception::Exception;
  const char* what() const override;
};

/// A failure that the processor has noticed.
class StructuredException : public Exception {
 public:
  /// `record` is the system's record of it, which this only points to.
  StructuredException(uint32_t error_code, const void* record)
      : Exception(error_code), record_(record) {}
  const char* what() const override;
  const void* record() const noexcept { return record_; }

 private:
  const void* record_;
};

/// Thrown to leave a thread's work; shows nothing.
class BreakException : public Exception {
 public:
  BreakException() = default;
};

/// An unknown conversion in a format text.
inline constexpr uint32_t kErrorUnknownConversion = 0x42FF0001;
/// A lead byte in the literal part of a format text.
inline constexpr uint32_t kErrorLeadByteInFormat = 0x42FF0002;

/// Whether failures that are tolerated otherwise are thrown; false until the program's start
/// switches it on.
void set_exception_mode(bool on) noexcept;
bool exception_mode() noexcept;

/// For allocations that don't go through operator new: asks the new-handler, which may throw what
/// it likes, and throws std::bad_alloc without one.
[[noreturn]] void throw_out_of_memory();

/// The system's own text for an error code; false, and `text` untouched, if it has none.
bool system_message(uint32_t code, String& text);
/// The system's text for an error code, or "unknown error 0x" with eight digits.
String system_error_text(uint32_t code);
/// The calling thread's last error code.
uint32_t last_error() noexcept;

/// The text of a report: what failed, during what, and why.
String exception_text(const Exception& exception);

}  // namespace ORLO
