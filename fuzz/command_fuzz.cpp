// Any text as a command line and as an icon specification, among files that make every branch of
// the resolution reachable.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "actions/shell_command.h"
#include "inventory/text_helpers.h"
#include "platform/memory_files.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

MemoryFiles made_files() {
  MemoryFiles files;
  files.add_file("C:\\a.exe");
  files.add_file("C:\\a b\\c.exe");
  files.add_file("D:\\x\\d");
  files.add_folder("C:\\a b");
  files.add_search_folder("D:\\x");
  files.set_variable("V", "C:\\a b");
  files.set_variable("LONG", std::string(2000, 'l'));
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryFiles files = made_files();
  files.forget_calls();
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const String text(bytes.c_str());
  const IconSpec spec = SplitIconSpec(text, files);
  demand(std::strchr(spec.args.c_str(), '\0') == spec.args.c_str() + spec.args.length());
  demand(spec.args.length() <= text.length());

  const CommandLine command = ResolveCommandLine(text, files);
  if (command.command.empty()) {
    demand(std::strcmp(command.path.c_str(), spec.path.c_str()) == 0);
    demand(std::strcmp(command.args.c_str(), spec.args.c_str()) == 0);
  } else {
    demand(files.is_file(command.path.c_str()));
  }
  const ShellCommand shell = ShellCommand::parse(text, files);
  demand(std::strcmp(shell.start(nullptr).file, shell.target().c_str()) == 0);
  return 0;
}
