// Files of tests: a folder of their own, both families of file classes, and files in memory that
// log what is asked of them and fail when told to.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "orlo/exception.h"
#include "orlo/overlapped_file.h"
#include "orlo/sync_file.h"

class TempFolder {
 public:
  TempFolder()
      : path_(std::filesystem::temp_directory_path() /
              ("zolvane-files-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string path(const char* name) const { return (path_ / name).string(); }
  std::string make(const char* name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }
  std::string content(const char* name) const {
    std::ostringstream bytes;
    bytes << std::ifstream(path(name), std::ios::binary).rdbuf();
    return bytes.str();
  }

 private:
  const std::filesystem::path path_;
};

/// A file in memory.
struct MemoryFile {
  std::string content{};
  /// "read 0+4096", one for each transfer.
  std::vector<std::string> log{};
  /// A transfer that begins at this offset or beyond it fails with `error`.
  uint64_t refuses_from = UINT64_MAX;
  uint32_t error = 0;
  /// A read gives at most so many bytes.
  size_t longest_read = SIZE_MAX;
  /// Bytes that there is room for.
  size_t disk_size = SIZE_MAX;
};

/// The MemoryFile must outlive it.
class RawMemoryFile final : public ORLO::RawFile {
 public:
  explicit RawMemoryFile(MemoryFile& file) : file_(file) {}

  ORLO::Transfer read(uint64_t offset, char* block, size_t size) override {
    note("read", offset, size);
    if (offset >= file_.refuses_from) {
      std::memset(block, '!', size);
      return {0, file_.error};
    }
    if (offset >= file_.content.size()) return {};
    const auto from = static_cast<size_t>(offset);
    const size_t count = std::min({size, file_.content.size() - from, file_.longest_read});
    std::memcpy(block, file_.content.data() + from, count);
    return {count, 0};
  }

  ORLO::Transfer write(uint64_t offset, const char* block, size_t size) override {
    note("write", offset, size);
    if (offset >= file_.refuses_from) return {0, file_.error};
    const auto from = static_cast<size_t>(offset);
    const size_t count = std::min(size, file_.disk_size - std::min(file_.disk_size, from));
    file_.content.resize(std::max(file_.content.size(), from + count));
    std::memcpy(file_.content.data() + from, block, count);
    return {count, 0};
  }

 private:
  void note(const char* what, uint64_t offset, size_t size) {
    file_.log.push_back(std::string(what) + ' ' + std::to_string(offset) + '+' +
                        std::to_string(size));
  }

  MemoryFile& file_;
};

/// One of the two families of file classes.
struct FileFamily {
  const char* name;
  std::unique_ptr<ORLO::InFile> (*open_in)(const std::string& path, uint64_t start_offset);
  std::unique_ptr<ORLO::OutFile> (*open_out)(const std::string& path);
  std::unique_ptr<ORLO::InFile> (*in_over)(MemoryFile& file);
  std::unique_ptr<ORLO::OutFile> (*out_over)(MemoryFile& file);
};

inline void PrintTo(const FileFamily& family, std::ostream* out) {
  *out << family.name;
}

template <typename In>
std::unique_ptr<ORLO::InFile> open_in_as(const std::string& path, uint64_t start_offset) {
  return std::make_unique<In>(path.c_str(), ORLO::kOpenExisting, ORLO::kShareReadWrite,
                              ORLO::kSequentialScan, start_offset);
}
template <typename Out>
std::unique_ptr<ORLO::OutFile> open_out_as(const std::string& path) {
  return std::make_unique<Out>(path.c_str(), ORLO::kCreateAlways, ORLO::kShareRead, 0);
}

inline const FileFamily kFileFamilies[] = {
    {"Sync", &open_in_as<ORLO::SyncInFile>, &open_out_as<ORLO::SyncOutFile>,
     [](MemoryFile& file) -> std::unique_ptr<ORLO::InFile> {
       return std::make_unique<ORLO::SyncInFile>(std::make_unique<RawMemoryFile>(file));
     },
     [](MemoryFile& file) -> std::unique_ptr<ORLO::OutFile> {
       return std::make_unique<ORLO::SyncOutFile>(std::make_unique<RawMemoryFile>(file));
     }},
    {"Overlapped", &open_in_as<ORLO::OverlappedInFile>, &open_out_as<ORLO::OverlappedOutFile>,
     [](MemoryFile& file) -> std::unique_ptr<ORLO::InFile> {
       return std::make_unique<ORLO::OverlappedInFile>(
           ORLO::transfer_at_once(std::make_unique<RawMemoryFile>(file)));
     },
     [](MemoryFile& file) -> std::unique_ptr<ORLO::OutFile> {
       return std::make_unique<ORLO::OverlappedOutFile>(
           ORLO::transfer_at_once(std::make_unique<RawMemoryFile>(file)));
     }},
};

/// Base of the tests that hold for both.
class FileFamilyTest : public ::testing::TestWithParam<FileFamily> {
 protected:
  std::unique_ptr<ORLO::InFile> open_content(const std::string& content,
                                             uint64_t start_offset = 0) {
    return GetParam().open_in(folder.make("in", content), start_offset);
  }

  TempFolder folder;
};

inline std::string family_name(const ::testing::TestParamInfo<FileFamily>& test) {
  return test.param.name;
}

/// Text in 16 bits to a character.
inline std::string wide_bytes(std::u16string_view text, bool swapped = false) {
  std::string bytes;
  for (const char16_t character : text) {
    const char low = static_cast<char>(character & 0xFF);
    const char high = static_cast<char>(character >> 8);
    bytes += swapped ? high : low;
    bytes += swapped ? low : high;
  }
  return bytes;
}

/// Numbered pieces, so that each place of a long file looks different.
inline std::string numbered_text(size_t length) {
  std::string text;
  for (unsigned i = 0; text.size() < length; ++i)
    text += std::to_string(i) + ' ';
  text.resize(length);
  return text;
}

/// Sets the exception mode for its scope.
class ScopedExceptionMode {
 public:
  ScopedExceptionMode() { ORLO::set_exception_mode(true); }
  ~ScopedExceptionMode() { ORLO::set_exception_mode(false); }
  ScopedExceptionMode(const ScopedExceptionMode&) = delete;
  ScopedExceptionMode& operator=(const ScopedExceptionMode&) = delete;
};
