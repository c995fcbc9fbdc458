// Reads whole files for tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

inline std::string file_bytes(const std::filesystem::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}
