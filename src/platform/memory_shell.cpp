#include "platform/memory_shell.h"

#include <algorithm>
#include <utility>

#include "orlo/ascii.h"

namespace {

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return ORLO::ascii_lower(c); });
  return text;
}

/// A thread, as its end stays signalled for all who wait, which an event's signal does not.
class MemoryProcess final : public ORLO::Thread {
 public:
  explicit MemoryProcess(const std::shared_ptr<ORLO::Event>& end)
      : Thread([end] { return ORLO::wait_for(*end, ORLO::kInfinite) ? 0 : 1; }), end_(*end) {
    resume();
  }
  /// The thread ends with its owner, or it would be waited for without end.
  ~MemoryProcess() override { end_.set(); }

 private:
  ORLO::Event& end_;  // the thread's body owns it
};

}  // namespace

void MemoryShell::refuse(const std::string& file) {
  refused_.insert(lower(file));
}

void MemoryShell::end_process(size_t index) {
  ends_.at(index)->set();
}

size_t MemoryShell::owned_processes() const {
  return static_cast<size_t>(std::count_if(ends_.begin(), ends_.end(),
                                           [](const auto& end) { return end.use_count() > 1; }));
}

bool MemoryShell::open(const ShellStart& start) {
  return enter(start, false);
}

Shell::Started MemoryShell::open_process(const ShellStart& start) {
  if (!enter(start, true)) return {};
  if (!gives_processes_) return {true, nullptr};
  const auto end = ends_.emplace_back(std::make_shared<ORLO::Event>());
  auto process = std::make_unique<MemoryProcess>(end);
  if (ends_at_once_) {
    end->set();
    ORLO::wait_for(*process, ORLO::kInfinite);
  }
  return {true, std::move(process)};
}

/// Logs a start; false if it is refused.
bool MemoryShell::enter(const ShellStart& start, bool waits) {
  if (!can_ask_shell(start.file)) return false;
  starts_.push_back({waits, start.owner, start.file, start.arguments, start.verb, start.show});
  return !refuses_all_ && refused_.count(lower(start.file)) == 0;
}
