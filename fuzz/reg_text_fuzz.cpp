// Any bytes as a .reg text: read, loaded, and read back through the registry.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "orlo/rstring.h"
#include "platform/memory_registry.h"
#include "platform/reg_text.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Visits a key and what lies below it. Names outside the code page can't be opened, or lead to
/// another key, so that there may be more ways than keys: at most `budget` keys are visited.
void walk(MemoryRegistry& registry, const RegistryKey& key, size_t& budget) {
  if (budget == 0) return;
  --budget;
  Registry::KeyInfo info;
  demand(registry.info(key, info) == kRegSuccess);
  char name[256];
  uint32_t length = sizeof name;
  uint32_t index = 0;
  for (; registry.subkey_at(key, index, name, length) == kRegSuccess; ++index) {
    demand(length < sizeof name);
    length = sizeof name;
    RegistryKey subkey;
    if (registry.open(key, name, kKeyRead, subkey) == kRegSuccess) walk(registry, subkey, budget);
  }
  demand(index == info.subkeys);
  for (uint32_t i = 0; i < info.values; ++i) {
    char value_name[64];
    char data[16];
    uint32_t name_length = sizeof value_name;
    uint32_t size = sizeof data;
    uint32_t type = 0;
    const RegStatus status = registry.value_at(key, i, value_name, name_length, type, data, size);
    if (status != kRegSuccess) {
      demand(status == kRegMoreData);
    } else {
      demand(size <= sizeof data && name_length < sizeof value_name);
      get_registry_text(key, value_name);
      get_registry_binary(key, value_name);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const RegText text = parse_reg_text(bytes);
  demand(text.statements.size() <= size);
  size_t data_bytes = 0;
  for (const RegStatement& statement : text.statements) {
    demand(statement.name.size() <= size);
    data_bytes += statement.data.size();
  }
  demand(data_bytes <= 4 * size);

  MemoryRegistry registry(MemoryRegistry::View::native);
  const bool loaded = registry.load(bytes);
  demand(loaded == registry.error().empty());
  demand(!loaded || text.error.empty());
  for (const int32_t root : {kLocalMachine, kCurrentUser}) {
    RegistryKey key;
    demand(registry.open(root, "", kKeyRead, key) == kRegSuccess);
    size_t budget = size + 1;
    walk(registry, key, budget);
  }
  demand(registry.open_keys() == 0);
  return 0;
}
