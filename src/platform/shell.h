// The seam to the shell, which starts programs and opens documents, folders and addresses.
#pragma once

#include <cstddef>
#include <memory>

#include "orlo/thread.h"

/// What the shell is asked to start. The texts are 8-bit, in the code page, and read during the
/// call only.
struct ShellStart {
  void* owner = nullptr;  ///< an HWND on the target: owns what the shell may show
  const char* file = "";  ///< program, document, folder or address
  const char* arguments = "";
  const char* verb = "open";
  int show = 1;  ///< as ShowWindow takes it
};

class Shell {
 public:
  struct Started {
    bool ok = false;  ///< false if the shell has refused
    /// Signalled when the process has ended. Null if there is none to wait for, as where a running
    /// program has opened the document.
    std::unique_ptr<ORLO::Waitable> process;
  };

  virtual ~Shell() = default;
  /// ShellExecuteExA; false if it refuses, which it does without a box, and for a file that
  /// can_ask_shell() rejects.
  virtual bool open(const ShellStart& start) = 0;
  /// The same with a process to wait for (SEE_MASK_NOCLOSEPROCESS).
  virtual Started open_process(const ShellStart& start) = 0;
};

/// Longer names of files are refused: no path is as long, and some systems copy them to a buffer of
/// 1,024 characters unseen.
inline constexpr size_t kLongestShellFile = 512;

/// Whether a shell may be asked for this file. A null or blank one makes the system open a folder
/// of its choice.
bool can_ask_shell(const char* file) noexcept;

/// The shell of this system.
std::unique_ptr<Shell> make_system_shell();
