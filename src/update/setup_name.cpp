#include "update/setup_name.h"

#include <algorithm>
#include <iterator>

#include "orlo/ascii.h"

namespace {

constexpr std::string_view kBlanks = " .";
constexpr std::string_view kDevices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
constexpr std::string_view kNumberedDevices[] = {"com", "lpt"};
/// The system takes the three raised digits of the code page for digits, too.
constexpr std::string_view kDeviceNumbers = "123456789\xb9\xb2\xb3";

bool is_control_character(char c) noexcept {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}

bool leads_elsewhere(char c) noexcept {
  return c == '\\' || c == '/' || c == ':' || is_control_character(c);
}

/// What counts of a name where the system looks for devices.
std::string_view device_part(std::string_view name) noexcept {
  name.remove_prefix(std::min(name.find_first_not_of(kBlanks), name.size()));
  name = name.substr(0, name.find('.'));
  return name.substr(0, name.find_last_not_of(kBlanks) + 1);
}

bool is_numbered_device(std::string_view name) noexcept {
  constexpr size_t kLetters = 3;
  if (name.size() != kLetters + 1 || kDeviceNumbers.find(name.back()) == name.npos) return false;
  return std::any_of(std::begin(kNumberedDevices), std::end(kNumberedDevices),
                     [name](std::string_view device) {
                       return ORLO::equal_nocase(name.substr(0, kLetters), device);
                     });
}

bool is_device(std::string_view name) noexcept {
  return is_numbered_device(name) ||
         std::any_of(std::begin(kDevices), std::end(kDevices),
                     [name](std::string_view device) { return ORLO::equal_nocase(name, device); });
}

}  // namespace

bool is_plain_file_name(std::string_view name) noexcept {
  if (name.empty()) return true;
  if (std::any_of(name.begin(), name.end(), leads_elsewhere)) return false;
  return name.find_first_not_of(kBlanks) != name.npos && !is_device(device_part(name));
}
