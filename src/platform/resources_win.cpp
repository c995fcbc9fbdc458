#include "platform/resources.h"

#include <cstring>
#include <vector>

#include "orlo/exception.h"
#include "orlo/locale.h"

namespace {

/// Texts stand in blocks of this many, each one as its length and that many 16-bit units.
constexpr unsigned kTextsPerBlock = 16;

/// An entry of an accelerator table as the resource holds it.
struct AcceleratorEntry {
  uint16_t flags;
  uint16_t key;
  uint16_t command;
  uint16_t padding;
};

constexpr BYTE kVirtualKeyFlags = FVIRTKEY | FNOINVERT | FSHIFT | FCONTROL | FALT;

uint16_t unit_at(const void* data, size_t index) {
  uint16_t unit = 0;
  std::memcpy(&unit, static_cast<const char*>(data) + index * sizeof unit, sizeof unit);
  return unit;
}

ACCEL accelerator_of(const void* data, size_t index) {
  AcceleratorEntry entry = {};
  std::memcpy(&entry, static_cast<const char*>(data) + index * sizeof entry, sizeof entry);
  return {static_cast<BYTE>(entry.flags & kVirtualKeyFlags), entry.key, entry.command};
}

}  // namespace

Resources::Block Resources::find(LPCSTR type, unsigned id) const noexcept {
  const HRSRC place = FindResourceExA(module_, type, MAKEINTRESOURCEA(id), language_);
  if (place == nullptr) return {nullptr, 0};
  const HGLOBAL loaded = LoadResource(module_, place);
  if (loaded == nullptr) return {nullptr, 0};
  return {LockResource(loaded), SizeofResource(module_, place)};
}

String Resources::text(unsigned id) const {
  const Block block = find(RT_STRING, id / kTextsPerBlock + 1);
  const size_t units = block.size / sizeof(uint16_t);
  size_t start = 0;
  for (unsigned i = 0; i < id % kTextsPerBlock && start < units; ++i) {
    start += 1u + unit_at(block.data, start);
  }
  if (start >= units) return String();
  const size_t length = unit_at(block.data, start);
  if (length > units - start - 1) return String();
  std::u16string wide(length, u'\0');
  std::memcpy(wide.data(), static_cast<const char*>(block.data) + (start + 1) * sizeof(uint16_t),
              length * sizeof(uint16_t));
  return String(ORLO::system_locale().narrow(wide.data(), length));
}

const DLGTEMPLATE* Resources::dialog(unsigned id) const noexcept {
  return static_cast<const DLGTEMPLATE*>(find(RT_DIALOG, id).data);
}

ORLO::OwnedMenu Resources::load_menu(unsigned id) const {
  const Block block = find(RT_MENU, id);
  if (block.data == nullptr) throw ORLO::LWE();
  ORLO::OwnedMenu menu(LoadMenuIndirectA(block.data));
  if (!menu) throw ORLO::LWE();
  return menu;
}

ORLO::OwnedAccelerators Resources::accelerators(unsigned id) const {
  const Block block = find(RT_ACCELERATOR, id);
  if (block.data == nullptr) throw ORLO::LWE();
  std::vector<ACCEL> entries(block.size / sizeof(AcceleratorEntry));
  for (size_t i = 0; i < entries.size(); ++i)
    entries[i] = accelerator_of(block.data, i);
  ORLO::OwnedAccelerators table(
      CreateAcceleratorTableA(entries.data(), static_cast<int>(entries.size())));
  if (!table) throw ORLO::LWE();
  return table;
}
