// The optional module ORLOCORE: the foundation's texts, for who wants other ones than are built in.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "orlo/exception.h"

namespace ORLO {

/// The loaded module. Held only for the time of a use: its end unloads the module.
class CoreModule {
 public:
  virtual ~CoreModule() = default;
  /// False, and `text` untouched, if there is no such string.
  virtual bool string(unsigned id, String& text) const = 0;
  /// The text of the message table for an error code; likewise.
  virtual bool message(uint32_t code, String& text) const = 0;
  /// A string in one language; empty if there is none.
  virtual std::u16string wide_string(unsigned id, uint16_t language) const = 0;
  /// The platform's handle of the module, for its other resources; null for a stand-in.
  virtual void* native() const noexcept { return nullptr; }
};

/// Loads the module. Null if it isn't there; once that was so it isn't looked for again.
std::unique_ptr<CoreModule> core_module();

/// The strings that reports use; those for processor exceptions stand in exception_filter.cpp.
enum CoreStringId : unsigned {
  kCoreSecondFailure = 280,
  kCoreGoOn = 281,
  kCoreFailure = 284,
  kCoreDuring = 285,
  kCoreStdException = 286,
  kCoreComException = 287,
};

/// A string of the module, or the built-in text.
String core_string(unsigned id, const char* built_in);

/// A string of the module as a format for `args`; the built-in one where the module has none, or
/// one that the format engine refuses.
template <typename... Args>
String core_formatted(unsigned id, const char* built_in, const Args&... args) {
  try {
    return String::formatted(core_string(id, built_in).c_str(), args...);
  } catch (const ORLOException&) {
    return String::formatted(built_in, args...);
  }
}

/// Entry `index`, 0 to 15, of a block of a string table: counted texts one behind the other. Empty
/// if the block ends before it.
std::u16string string_block_entry(const char16_t* block, size_t units, unsigned index);

/// Finds the module. Chosen at link time.
std::unique_ptr<CoreModule> load_core_module();

/// Replaces the finding, for tests, and forgets that it has failed before. An empty function brings
/// the platform's back.
using CoreModuleLoader = std::function<std::unique_ptr<CoreModule>()>;
void set_core_module_loader(CoreModuleLoader loader);

}  // namespace ORLO
