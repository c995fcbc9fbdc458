// Changes and reads the registry while a program runs. A key is named by root ("HKLM", "HKCU"),
// view (32 or 64) and path.
#include <windows.h>

#include <memory>
#include <vector>

#include "command.h"

namespace driver {
namespace {

struct CloseKeyOf {
  using pointer = HKEY;
  void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using Key = std::unique_ptr<HKEY, CloseKeyOf>;

HKEY root_at(const Words& words) {
  if (words.text(1) == "HKLM") return HKEY_LOCAL_MACHINE;
  if (words.text(1) == "HKCU") return HKEY_CURRENT_USER;
  throw Refusal("unknown root " + words.text(1));
}

REGSAM view_at(const Words& words) {
  return words.number(2) == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
}

void check(LSTATUS status) {
  if (status != ERROR_SUCCESS) throw Refusal("registry error " + std::to_string(status));
}

Key open_key(const Words& words, REGSAM access) {
  HKEY key = nullptr;
  check(RegOpenKeyExA(root_at(words), words.text(3).c_str(), 0, access | view_at(words), &key));
  return Key(key);
}

Key create_key(const Words& words) {
  HKEY key = nullptr;
  check(RegCreateKeyExA(root_at(words), words.text(3).c_str(), 0, nullptr, 0,
                        KEY_ALL_ACCESS | view_at(words), nullptr, &key, nullptr));
  return Key(key);
}

/// reg-create ROOT VIEW PATH
void create(const Words& words, Json& answer) {
  create_key(words);
  answer.boolean(true);
}

/// reg-set ROOT VIEW PATH NAME TYPE DATA: the data's bytes as they are, a text with its NUL.
void set_value(const Words& words, Json& answer) {
  const Key key = create_key(words);
  const std::string& data = words.text(6);
  check(RegSetValueExA(key.get(), words.text(4).c_str(), 0, static_cast<DWORD>(words.number(5)),
                       reinterpret_cast<const BYTE*>(data.data()),
                       static_cast<DWORD>(data.size())));
  answer.boolean(true);
}

/// reg-get ROOT VIEW PATH NAME: type and bytes.
void get_value(const Words& words, Json& answer) {
  const Key key = open_key(words, KEY_READ);
  DWORD type = 0;
  DWORD size = 0;
  check(RegQueryValueExA(key.get(), words.text(4).c_str(), nullptr, &type, nullptr, &size));
  std::vector<char> data(size + size_t{1});
  check(RegQueryValueExA(key.get(), words.text(4).c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(data.data()), &size));
  answer.begin_object().member("type", type);
  answer.member("data", std::string_view(data.data(), size)).end_object();
}

/// reg-delete ROOT VIEW PATH: the key with all below it.
void delete_key(const Words& words, Json& answer) {
  const Key key = open_key(words, KEY_ALL_ACCESS);
  check(RegDeleteTreeA(key.get(), nullptr));
  check(RegDeleteKeyExA(root_at(words), words.text(3).c_str(), view_at(words), 0));
  answer.boolean(true);
}

/// reg-keys ROOT VIEW PATH: each subkey's name with its last write time as a file time.
void list_keys(const Words& words, Json& answer) {
  const Key key = open_key(words, KEY_READ);
  answer.begin_array();
  for (DWORD index = 0;; ++index) {
    char name[256];
    DWORD length = sizeof name;
    FILETIME written{};
    if (RegEnumKeyExA(key.get(), index, name, &length, nullptr, nullptr, nullptr, &written) !=
        ERROR_SUCCESS) {
      break;
    }
    const auto high = static_cast<int64_t>(written.dwHighDateTime) << 32;
    answer.begin_object().member("name", std::string_view(name, length));
    answer.member("written", high | written.dwLowDateTime).end_object();
  }
  answer.end_array();
}

constexpr Command kCommands[] = {
    {"reg-create", create},     {"reg-set", set_value},  {"reg-get", get_value},
    {"reg-delete", delete_key}, {"reg-keys", list_keys},
};

}  // namespace

std::span<const Command> registry_commands() {
  return kCommands;
}

}  // namespace driver
