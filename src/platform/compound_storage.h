// The seam to the platform's compound files: a file that holds streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

/// 0, or the platform's code of a failure (an HRESULT), which is negative.
using StorageStatus = int32_t;

/// A stream that is open for writing.
class StorageStream {
 public:
  virtual ~StorageStream() = default;
  /// ISequentialStream::Write in one call, from where the last one ended. A stream that takes fewer
  /// bytes has failed, too.
  virtual StorageStatus write(const void* data, size_t size) = 0;
};

/// An open compound file. It is whole only when it has been destroyed; its streams go before it.
class CompoundFile {
 public:
  virtual ~CompoundFile() = default;
  /// IStorage::CreateStream with mode 0x1012: an empty stream, closed again at once.
  virtual StorageStatus create_stream(const char16_t* name) = 0;
  /// IStorage::OpenStream with mode 0x12. Null after a failure.
  virtual std::unique_ptr<StorageStream> open_stream(const char16_t* name,
                                                     StorageStatus& status) = 0;
  /// IStorage::Commit: whatever was held back by now reaches the file. A full disk may show only
  /// here.
  virtual StorageStatus commit() = 0;
};

class CompoundStorage {
 public:
  virtual ~CompoundStorage() = default;
  /// StgCreateDocfile with mode 0x1012: creates the file, or replaces what is there. Null after a
  /// failure.
  virtual std::unique_ptr<CompoundFile> create(const char16_t* path, StorageStatus& status) = 0;
};

/// The storage of this system; a build machine's can create nothing.
std::unique_ptr<CompoundStorage> make_system_storage();
