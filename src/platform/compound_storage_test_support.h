// What the contract of compound files is tested on: a storage whose files can be read again.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/memory_storage.h"

class StorageBed {
 public:
  virtual ~StorageBed() = default;
  virtual CompoundStorage& storage() = 0;
  /// Where a file of this name can be created.
  virtual std::u16string path(const std::u16string& name) = 0;
  /// Where none can be.
  virtual std::u16string path_without_folder() = 0;
  /// All that a finished file holds; nothing if it is none.
  virtual std::optional<MemoryStorage::Streams> read(const std::u16string& path) = 0;
};

struct StorageBedMaker {
  const char* name;
  std::function<std::unique_ptr<StorageBed>()> make;
};

inline void PrintTo(const StorageBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of CompoundStorage that every implementation keeps.
class StorageContract : public ::testing::TestWithParam<StorageBedMaker> {
 protected:
  StorageContract() : bed_(GetParam().make()) {}

  StorageBed& bed() { return *bed_; }
  /// A new file at the path of this name; null after a failure, as status() tells.
  std::unique_ptr<CompoundFile> create(const std::u16string& name = u"book.xls") {
    return bed().storage().create(bed().path(name).c_str(), status_);
  }
  std::unique_ptr<StorageStream> open(CompoundFile& file, const char16_t* name) {
    return file.open_stream(name, status_);
  }
  std::optional<MemoryStorage::Streams> read(const std::u16string& name = u"book.xls") {
    return bed().read(bed().path(name));
  }
  /// Of the last of these.
  StorageStatus status() const { return status_; }

 private:
  std::unique_ptr<StorageBed> bed_;
  StorageStatus status_ = 1;
};
