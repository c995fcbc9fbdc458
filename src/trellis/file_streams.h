// Standard streams over files of the C runtime.
#pragma once

#include <cstdio>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>

namespace Trellis {

/// Closes the file if it is the owner.
struct FileHolder {
  explicit FileHolder(std::FILE* opened, bool is_owner) noexcept : file(opened), owner(is_owner) {}
  FileHolder(const FileHolder&) = delete;
  FileHolder& operator=(const FileHolder&) = delete;
  ~FileHolder();

  std::FILE* file;  ///< null if it couldn't be opened
  bool owner;
};

/// Blocks of a file for a stream, in one direction at a time.
class FileBuffer final : public std::streambuf {
 public:
  /// The file must outlive it, and may be null: then every transfer fails.
  explicit FileBuffer(std::FILE* file);

 protected:
  int_type underflow() override;
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  bool write_out();

  std::FILE* const file_;
  const std::unique_ptr<char[]> block_;
};

/// Replaces the file. A file that can't be opened sets the failure state, and all output vanishes.
class tofstream : public FileHolder, public std::ostream {
 public:
  explicit tofstream(const char* path);
  /// Over a file that is open for writing.
  tofstream(std::FILE* opened, bool is_owner);
  /// Flushes, and closes the file if it owns it.
  ~tofstream() override;

 private:
  FileBuffer buffer_;
};

/// A file that can't be opened sets the failure state.
class tifstream : public FileHolder, public std::istream {
 public:
  explicit tifstream(const char* path);
  /// Over a file that is open for reading.
  tifstream(std::FILE* opened, bool is_owner);
  ~tifstream() override;

 private:
  FileBuffer buffer_;
};

}  // namespace Trellis
