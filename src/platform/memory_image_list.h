// Image lists in memory, for tests and for the build machine.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <vector>

#include "platform/image_list.h"

/// Each image is the colour of a MemoryIcon. As bytes: a line "16 pixels, 3 images", and one of
/// six hexadecimal digits for each image.
class MemoryImageList final : public ImageList {
 public:
  /// Of the default image.
  static constexpr uint32_t kDefaultColor = 0x808080;

  MemoryImageList(uint32_t size, std::vector<uint32_t> colors);

  /// Image by image; not while another thread appends.
  const std::vector<uint32_t>& colors() const noexcept { return colors_; }
  /// Called at the beginning of each operation with its name ("append", "count", "write"), on the
  /// thread that asks; may wait, or throw.
  std::function<void(const char* operation)> on_call;
  /// Further appends have no room.
  void refuse_images(bool refused = true) noexcept { full_ = refused; }
  /// What further writes give, while it isn't `yes`.
  void set_written(Written result) noexcept { written_ = result; }

  int append(const Icon& icon) override;
  int count() const override;
  Written write(std::string& bytes) const override;

 private:
  void enter(const char* operation) const {
    if (on_call) on_call(operation);
  }
  const uint32_t size_;
  std::vector<uint32_t> colors_;
  std::atomic<bool> full_{false};
  std::atomic<Written> written_{Written::yes};
};

class MemoryImageLists : public ImageLists {
 public:
  /// `size`: pixels of a small icon's side.
  explicit MemoryImageLists(uint32_t size = 16) noexcept : size_(size) {}

  std::unique_ptr<ImageList> fresh() override;
  std::unique_ptr<ImageList> read(const std::string& bytes, bool& other_size) override;

  /// The calls so far: "fresh", "read".
  const std::vector<std::string>& calls() const noexcept { return calls_; }

 private:
  const uint32_t size_;
  std::vector<std::string> calls_;
};
