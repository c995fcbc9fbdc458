// Icon files for the icons' bench.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "orlo/orlowin.h"

/// A folder with icon files in it, each of another colour; gone with its owner.
class IconFiles {
 public:
  explicit IconFiles(int count) {
    char root[MAX_PATH] = "";
    GetTempPathA(sizeof root, root);
    folder_ = std::string(root) + "zolvane-icon-bench";
    CreateDirectoryA(folder_.c_str(), nullptr);
    for (int i = 0; i < count; ++i)
      paths_.push_back(write(i));
  }
  ~IconFiles() {
    for (const std::string& path : paths_)
      DeleteFileA(path.c_str());
    RemoveDirectoryA(folder_.c_str());
  }
  IconFiles(const IconFiles&) = delete;
  IconFiles& operator=(const IconFiles&) = delete;

  const std::string& folder() const noexcept { return folder_; }
  const std::vector<std::string>& paths() const noexcept { return paths_; }

 private:
  static void put(std::string& bytes, uint32_t value, int width) {
    for (int i = 0; i < width; ++i)
      bytes += static_cast<char>(value >> (8 * i));
  }

  /// One image: 32 bits for a pixel, and a mask that lets all of them be seen.
  static std::string image(int size, uint32_t color) {
    const uint32_t side = static_cast<uint32_t>(size);
    const uint32_t mask_line = (side + 31) / 32 * 4;
    std::string bytes;
    for (const uint32_t field : {40u, side, 2 * side})
      put(bytes, field, 4);
    put(bytes, 1, 2);
    put(bytes, 32, 2);
    for (int i = 0; i < 6; ++i)
      put(bytes, 0, 4);
    for (uint32_t i = 0; i < side * side; ++i)
      put(bytes, 0xff000000u | color, 4);
    bytes.append(mask_line * side, '\0');
    return bytes;
  }

  std::string write(int number) const {
    const uint32_t color = 0x203040u + static_cast<uint32_t>(number) * 0x010307u % 0xc0c0c0u;
    const std::string images[] = {image(16, color), image(32, color)};
    std::string bytes;
    put(bytes, 0x10000, 4);
    put(bytes, 2, 2);
    uint32_t offset = 6 + 2 * 16;
    for (int i = 0; i < 2; ++i) {
      const uint32_t size = i == 0 ? 16 : 32;
      const auto length = static_cast<uint32_t>(images[i].size());
      put(bytes, size | size << 8, 4);
      put(bytes, 1 | 32 << 16, 4);
      put(bytes, length, 4);
      put(bytes, offset, 4);
      offset += length;
    }
    std::string path = folder_ + "\\" + std::to_string(number) + ".ico";
    if (std::FILE* const file = std::fopen(path.c_str(), "wb")) {
      for (const std::string& part : {bytes, images[0], images[1]})
        std::fwrite(part.data(), 1, part.size(), file);
      std::fclose(file);
    }
    return path;
  }

  std::string folder_;
  std::vector<std::string> paths_;
};
