// What the driver and the probe agree on. The probe is a DLL that the driver has a program load:
// menus and fonts can only be read from inside the process that owns them.
#pragma once

#include <cstdint>

namespace driver {

inline constexpr char kProbeFile[] = "zolvane-probe.dll";
/// The exported function, a thread's start routine; its argument is a ProbeRequest in the program.
inline constexpr char kProbeEntry[] = "zolvane_probe";

/// The window class of open popup menus.
inline constexpr char kPopupClass[] = "#32768";

enum class ProbeQuestion : uint32_t {
  menu,
  system_menu,
  text_extents,
  dialog_units,
  combo,
  popup,
  list_box,
  list_cells,
  tree
};

struct ProbeRequest {
  ProbeQuestion question;
  uint32_t window;
  /// What else the question needs: two lengths, or a control's id in the first.
  int32_t first;
  int32_t second;
  /// Set by the probe: where in the program the JSON lies, and its length. It has been allocated by
  /// VirtualAlloc and belongs to the driver.
  uint32_t answer;
  uint32_t length;
};

}  // namespace driver
