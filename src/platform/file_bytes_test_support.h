// Reads whole files for tests.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

inline std::string file_bytes(const std::filesystem::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

/// A file or folder of the project that tests read, `path` as seen from the project's root. For
/// programs that run elsewhere the environment variable ZOLVANE_TEST_DATA names another root.
inline std::filesystem::path test_data(const std::string& path) {
  const char* const elsewhere = std::getenv("ZOLVANE_TEST_DATA");
  return std::filesystem::path(elsewhere != nullptr ? elsewhere : ZOLVANE_SOURCE_ROOT) / path;
}
