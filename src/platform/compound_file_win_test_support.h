// Reads a compound file with the system's own functions.
#pragma once

#include "orlo/orlowin.h"
// These need what orlowin.h brings.
#include <objbase.h>
#include <objidl.h>

#include <optional>
#include <string>

#include "platform/memory_storage.h"
#include "platform/owned_com.h"

/// The bytes of one stream.
inline std::string read_stream(IStorage& storage, const WCHAR* name, size_t size) {
  IStream* opened = nullptr;
  storage.OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &opened);
  const OwnedCom<IStream> stream(opened);
  std::string bytes(size, '\0');
  ULONG read = 0;
  if (stream) stream.get()->Read(bytes.data(), static_cast<ULONG>(size), &read);
  bytes.resize(read);
  return bytes;
}

/// All that the file holds, a storage in it as if it were an empty stream; nothing if it is none.
inline std::optional<MemoryStorage::Streams> read_compound_file(const std::u16string& path) {
  IStorage* opened = nullptr;
  const auto* const name = reinterpret_cast<const WCHAR*>(path.c_str());
  StgOpenStorage(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0, &opened);
  const OwnedCom<IStorage> storage(opened);
  if (!storage) return std::nullopt;
  IEnumSTATSTG* listed = nullptr;
  storage.get()->EnumElements(0, nullptr, 0, &listed);
  const OwnedCom<IEnumSTATSTG> elements(listed);
  MemoryStorage::Streams streams;
  STATSTG element = {};
  while (elements && elements.get()->Next(1, &element, nullptr) == S_OK) {
    const std::u16string found(reinterpret_cast<const char16_t*>(element.pwcsName));
    streams[found] =
        read_stream(*storage.get(), element.pwcsName, static_cast<size_t>(element.cbSize.QuadPart));
    CoTaskMemFree(element.pwcsName);
  }
  return streams;
}

/// A folder of its own for files of a test, which goes with them.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::u16string& name) {
    WCHAR folder[MAX_PATH] = L"";
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    path_.assign(reinterpret_cast<const char16_t*>(folder), length);
    path_.append(name);
    for (const char digit : std::to_string(GetCurrentProcessId()))
      path_.push_back(static_cast<char16_t>(digit));
    CreateDirectoryW(wide(path_), nullptr);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(wide(path_ + u"\\*.*"), &found);
    while (search != INVALID_HANDLE_VALUE) {
      const auto* const name = reinterpret_cast<const char16_t*>(found.cFileName);
      DeleteFileW(wide((path_ + u'\\').append(name)));
      if (!FindNextFileW(search, &found)) break;
    }
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
    RemoveDirectoryW(wide(path_));
  }

  std::u16string file(const std::u16string& name) const { return (path_ + u'\\').append(name); }

 private:
  static const WCHAR* wide(const std::u16string& text) {
    return reinterpret_cast<const WCHAR*>(text.c_str());
  }

  std::u16string path_;
};
