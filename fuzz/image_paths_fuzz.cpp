// A file of image paths behind one byte, the size of the pieces that it is read in. What is read is
// in its lines, and is the same again once it has been written.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "orlo/sync_file.h"
#include "persist/image_paths.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

class Content final : public ORLO::RawFile {
 public:
  Content(std::string& bytes, size_t piece) : bytes_(bytes), piece_(piece) {}
  ORLO::Transfer read(uint64_t offset, char* block, size_t size) override {
    if (offset >= bytes_.size()) return {};
    const auto from = static_cast<size_t>(offset);
    const size_t count = std::min({size, piece_, bytes_.size() - from});
    std::memcpy(block, bytes_.data() + from, count);
    return {count, 0};
  }
  ORLO::Transfer write(uint64_t offset, const char* block, size_t size) override {
    const auto from = static_cast<size_t>(offset);
    bytes_.resize(std::max(bytes_.size(), from + size));
    std::memcpy(bytes_.data() + from, block, size);
    return {size, 0};
  }

 private:
  std::string& bytes_;
  const size_t piece_;
};

using Entries = std::map<std::string, int32_t>;

ImageIndexMap load(std::string bytes, size_t piece) {
  ImageIndexMap map;
  ORLO::SyncInFile file(std::make_unique<Content>(bytes, piece));
  demand(LoadImagePaths(map, file));
  return map;
}

std::string save(const ImageIndexMap& map) {
  std::string bytes;
  ORLO::SyncOutFile file(std::make_unique<Content>(bytes, 1));
  demand(SaveImagePaths(map, file));
  demand(file.flush());
  return bytes;
}

Entries entries(const ImageIndexMap& map) {
  Entries all;
  for (const auto& [spec, image] : map)
    all[std::string(spec.c_str(), spec.length())] = image;
  return all;
}

void check(const Entries& read, const std::string& bytes) {
  for (const auto& [spec, image] : read) {
    demand(image >= kImageNotLoaded);
    demand(!spec.empty() && spec.find('\n') == std::string::npos);
    demand(spec.find_first_of(" \t\v\f\r") != 0);
    demand(bytes.find(spec) != std::string::npos);
    demand(bytes.find(std::to_string(image).substr(image < 0 ? 1u : 0u)) != std::string::npos);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const std::string bytes(data + 1, data + size);
  const ImageIndexMap map = load(bytes, data[0] + size_t{1});
  check(entries(map), bytes);
  demand(entries(load(save(map), 1)) == entries(map));
  return 0;
}
