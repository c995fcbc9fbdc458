// Icon files and libraries of tests, as bytes. Each picture is of one colour, 0xRRGGBB.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// An icon in two sizes: 16 and 32 pixels.
struct IconPicture {
  uint32_t small = 0;
  uint32_t large = 0;
};

struct ResourceIcon {
  uint16_t id = 0;
  IconPicture picture{};
};

/// Writes numbers with their lowest byte first.
class ByteWriter {
 public:
  ByteWriter& put(uint64_t number, size_t size) {
    for (size_t i = 0; i < size; ++i)
      bytes += static_cast<char>(number >> (8 * i));
    return *this;
  }
  ByteWriter& put8(unsigned number) { return put(number, 1); }
  ByteWriter& put16(unsigned number) { return put(number, 2); }
  ByteWriter& put32(uint64_t number) { return put(number, 4); }
  ByteWriter& pad_to(size_t size) {
    bytes.resize(size);
    return *this;
  }

  std::string bytes;
};

/// A bitmap as icons have it: 32 bits to a pixel, all opaque.
inline std::string icon_bitmap(unsigned size, uint32_t color) {
  ByteWriter out;
  out.put32(40).put32(size).put32(uint64_t{2} * size).put16(1).put16(32).put32(0).put32(0);
  out.put32(0).put32(0).put32(0).put32(0);
  for (unsigned pixel = 0; pixel < size * size; ++pixel)
    out.put32(color | 0xFF000000U);
  return out.bytes + std::string(size_t{size} * 4, '\0');
}

inline void put_icon_entry(ByteWriter& out, unsigned size, size_t bytes) {
  out.put8(size).put8(size).put8(0).put8(0).put16(1).put16(32).put32(bytes);
}

/// An .ico file.
inline std::string icon_file(const IconPicture& picture) {
  const std::string small = icon_bitmap(16, picture.small);
  const std::string large = icon_bitmap(32, picture.large);
  ByteWriter out;
  out.put16(0).put16(1).put16(2);
  put_icon_entry(out, 16, small.size());
  out.put32(6 + 2 * 16);
  put_icon_entry(out, 32, large.size());
  out.put32(6 + 2 * 16 + small.size());
  return out.bytes + small + large;
}

/// The resources of a library: by type and id, of one language.
class ResourceSection {
 public:
  static constexpr uint32_t kRva = 0x1000;

  /// Types and, of each, ids must come in ascending order.
  void add(uint16_t type, uint16_t id, std::string content) {
    if (types_.empty() || types_.back().first != type) types_.push_back({type, {}});
    types_.back().second.push_back({id, std::move(content)});
  }

  std::string bytes() const {
    // Directories first, type by type, then the descriptions of the data, then the data.
    size_t directories = directory_size(types_.size());
    size_t count = 0;
    for (const auto& [type, items] : types_) {
      directories += directory_size(items.size()) + items.size() * directory_size(1);
      count += items.size();
    }
    size_t next_directory = directory_size(types_.size());
    size_t next_entry = directories;
    size_t next_data = directories + count * kEntrySize;
    ByteWriter root;
    ByteWriter below;
    ByteWriter entries;
    std::string data;
    put_directory(root, types_.size());
    for (const auto& [type, items] : types_) {
      root.put32(type).put32(next_directory | kSubdirectory);
      next_directory += directory_size(items.size());
      ByteWriter languages;
      put_directory(below, items.size());
      for (const auto& [id, content] : items) {
        below.put32(id).put32(next_directory | kSubdirectory);
        next_directory += directory_size(1);
        put_directory(languages, 1);
        languages.put32(0x409).put32(next_entry);
        next_entry += kEntrySize;
        entries.put32(kRva + next_data).put32(content.size()).put32(0).put32(0);
        const std::string padded = content + std::string(-content.size() % 4, '\0');
        data += padded;
        next_data += padded.size();
      }
      below.bytes += languages.bytes;
    }
    return root.bytes + below.bytes + entries.bytes + data;
  }

 private:
  static constexpr uint32_t kSubdirectory = 0x80000000;
  static constexpr size_t kEntrySize = 16;
  static constexpr size_t directory_size(size_t items) { return 16 + 8 * items; }
  static void put_directory(ByteWriter& out, size_t items) {
    out.put32(0).put32(0).put32(0).put16(0).put16(static_cast<unsigned>(items));
  }

  std::vector<std::pair<uint16_t, std::vector<std::pair<uint16_t, std::string>>>> types_;
};

/// A library of the 32-bit kind that has nothing but resources.
inline std::string library_file(const std::string& resources) {
  const size_t raw_size = (resources.size() + 0x1FF) / 0x200 * 0x200;
  const size_t memory_size = (resources.size() + 0xFFF) / 0x1000 * 0x1000;
  ByteWriter out;
  out.put8('M').put8('Z').pad_to(0x3C).put32(0x40);
  out.put8('P').put8('E').put16(0);
  out.put16(0x14C).put16(1).put32(0).put32(0).put32(0).put16(224).put16(0x2102);
  // The optional header, its data directory with the resources third.
  out.put16(0x10B).put16(0).put32(0).put32(raw_size).put32(0).put32(0);
  out.put32(ResourceSection::kRva).put32(ResourceSection::kRva);
  out.put32(0x10000000).put32(0x1000).put32(0x200);
  out.put16(4).put16(0).put16(0).put16(0).put16(4).put16(0).put32(0);
  out.put32(ResourceSection::kRva + memory_size).put32(0x200).put32(0).put16(2).put16(0);
  out.put32(0x100000).put32(0x1000).put32(0x100000).put32(0x1000).put32(0).put32(16);
  out.put32(0).put32(0).put32(0).put32(0);
  out.put32(ResourceSection::kRva).put32(resources.size());
  out.pad_to(out.bytes.size() + size_t{13} * 8);
  out.bytes += std::string(".rsrc\0\0\0", 8);
  out.put32(resources.size()).put32(ResourceSection::kRva).put32(raw_size).put32(0x200);
  out.put32(0).put32(0).put32(0).put32(0x40000040);
  out.pad_to(0x200);
  out.bytes += resources;
  return out.pad_to(0x200 + raw_size).bytes;
}

/// A library with the icons, whose ids must ascend.
inline std::string icon_library(const std::vector<ResourceIcon>& icons) {
  constexpr uint16_t kIcon = 3;
  constexpr uint16_t kGroup = 14;
  ResourceSection resources;
  uint16_t image = 0;
  for (const ResourceIcon& icon : icons) {
    resources.add(kIcon, ++image, icon_bitmap(16, icon.picture.small));
    resources.add(kIcon, ++image, icon_bitmap(32, icon.picture.large));
  }
  image = 0;
  for (const ResourceIcon& icon : icons) {
    ByteWriter group;
    group.put16(0).put16(1).put16(2);
    put_icon_entry(group, 16, icon_bitmap(16, 0).size());
    group.put16(++image);
    put_icon_entry(group, 32, icon_bitmap(32, 0).size());
    group.put16(++image);
    resources.add(kGroup, icon.id, group.bytes);
  }
  return library_file(resources.bytes());
}
