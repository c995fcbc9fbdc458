// Compound files in memory, for tests.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/compound_storage.h"

/// Takes every path for one where a file can be created, unless it is told otherwise. Names of
/// files and streams compare without regard to case. Belongs to one thread; what it has given must
/// be gone before it is.
class MemoryStorage : public CompoundStorage {
 public:
  enum class Operation { create, create_stream, open_stream, write, commit };

  struct NameOrder {
    bool operator()(const std::u16string& a, const std::u16string& b) const;
  };
  /// The bytes of each stream.
  using Streams = std::map<std::u16string, std::string, NameOrder>;

  /// No file can be created at this path from now on.
  void refuse(const std::u16string& path) { refused_.insert(path); }
  /// Each such operation fails with this status from now on, and does nothing.
  void fail(Operation operation, StorageStatus status) { failures_[operation] = status; }
  /// Each write from now on takes no more than so many bytes.
  void take_at_most(size_t bytes) noexcept { most_ = bytes; }

  /// What a file holds. Null if there is none, and while it is open: nobody could read it.
  const Streams* file(const std::u16string& path) const;
  /// All calls in their order, whatever became of them, and what was let go: "create PATH", "create
  /// stream NAME", "open stream NAME", "write COUNT", "commit", "close stream NAME", "close PATH".
  const std::vector<std::string>& calls() const noexcept { return calls_; }

  std::unique_ptr<CompoundFile> create(const char16_t* path, StorageStatus& status) override;

 private:
  class File;
  class Stream;
  struct Content {
    Streams streams;
    bool open = false;
  };

  void log(const char* call, const std::u16string& name);
  /// What the operation was told to fail with; 0 if it may go on.
  StorageStatus failure(Operation operation) const;

  std::map<std::u16string, Content, NameOrder> files_;
  std::set<std::u16string, NameOrder> refused_;
  std::map<Operation, StorageStatus> failures_;
  std::optional<size_t> most_;
  std::vector<std::string> calls_;
};
