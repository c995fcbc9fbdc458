// The seam to the system's files: blocks at offsets, without buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "orlo/rstring.h"

namespace ORLO {

/// Outcome of one transfer. At the end of the file nothing is read, without an error.
struct Transfer {
  size_t count = 0;
  /// 0, or the system's code.
  uint32_t error = 0;
};

/// Transfers whose result is there at once.
class RawFile {
 public:
  virtual ~RawFile() = default;
  virtual Transfer read(uint64_t offset, char* block, size_t size) = 0;
  virtual Transfer write(uint64_t offset, const char* block, size_t size) = 0;
};

/// Transfers that go on while the caller does something else, one at a time. The block of a started
/// transfer must stay until wait(), cancel() or the destructor has returned.
class OverlappedRawFile {
 public:
  virtual ~OverlappedRawFile() = default;
  /// 0, or the system's code if the transfer couldn't be started.
  virtual uint32_t start_read(uint64_t offset, char* block, size_t size) = 0;
  virtual uint32_t start_write(uint64_t offset, const char* block, size_t size) = 0;
  /// The end of the transfer that was started.
  virtual Transfer wait() = 0;
  /// Gives up a started transfer, if there is one; the block is free then.
  virtual void cancel() noexcept = 0;
};

enum class FileAccess : uint32_t { read = 0x80000000, write = 0x40000000 };

/// The parameters are the platform's; see file_modes.h. Null if the file can't be opened.
std::unique_ptr<RawFile> open_raw_file(const char* file_name, FileAccess access,
                                       uint32_t disposition, uint32_t share_mode, uint32_t flags);
std::unique_ptr<OverlappedRawFile> open_overlapped_raw_file(const char* file_name,
                                                            FileAccess access, uint32_t disposition,
                                                            uint32_t share_mode, uint32_t flags);

/// Stands in where there is no overlapped access: makes each transfer when it is started. Null for
/// null.
std::unique_ptr<OverlappedRawFile> transfer_at_once(std::unique_ptr<RawFile> file);

enum class StandardStream { output, error };

/// A standard stream of the process, written from where it stands, whatever the offset. Null if
/// there is none. What a program with windows was started with counts; where that is nothing, the
/// console of the process that started it, which stays attached.
std::unique_ptr<RawFile> open_standard_stream(StandardStream stream);

/// Fails without a word, above all if there is no such file. Folders stay.
void delete_file(const char* file_name) noexcept;

/// Gives a file a new name in its folder; a file that has that name already is gone, unless it is
/// in use or may only be read. 0, or the system's code of the failure, after which both files are
/// as they were.
uint32_t rename_file(const char* old_name, const char* new_name) noexcept;

/// Creates an empty file in the folder of `neighbour`, with a name that no other file has: the
/// name. Throws LWE.
String create_temporary_file(const String& neighbour);

/// Sets the calling thread's last error code.
void set_last_error(uint32_t code) noexcept;

}  // namespace ORLO
