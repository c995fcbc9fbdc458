// A shell that starts nothing, for tests and for the build machine.
#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "orlo/thread.h"
#include "platform/shell.h"

/// Takes every file for one that can be started, unless it is told otherwise. Belongs to one
/// thread, apart from the processes, which any thread may wait for. These may outlive it.
class MemoryShell : public Shell {
 public:
  /// What the system would have been asked to start.
  struct Start {
    bool waits = false;  ///< asked for a process
    void* owner = nullptr;
    std::string file;
    std::string arguments;
    std::string verb;
    int show = 0;
  };

  /// Refuses this file from now on, without regard to case.
  void refuse(const std::string& file);
  /// Refuses all.
  void refuse_all() noexcept { refuses_all_ = true; }
  /// From now on what is started gives no process.
  void give_no_process() noexcept { gives_processes_ = false; }
  /// From now on processes have ended when they are given.
  void end_at_once() noexcept { ends_at_once_ = true; }

  /// All starts that got this far, the refused ones too.
  const std::vector<Start>& starts() const noexcept { return starts_; }
  /// Ends the process at `index`, counted from 0 in the order given; later calls do nothing.
  void end_process(size_t index);
  /// How many of the processes given are still owned by somebody.
  size_t owned_processes() const;

  bool open(const ShellStart& start) override;
  Started open_process(const ShellStart& start) override;

 private:
  bool enter(const ShellStart& start, bool waits);

  std::vector<Start> starts_;
  std::vector<std::shared_ptr<ORLO::Event>> ends_;  ///< one for each process, in the order given
  std::set<std::string> refused_;                   ///< in lower case
  bool refuses_all_ = false;
  bool gives_processes_ = true;
  bool ends_at_once_ = false;
};
