#include "platform/memory_image_list.h"

#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/memory_icons.h"

namespace {

struct Head {
  unsigned size = 0;
  unsigned count = 0;
};

/// The next line, which has to end like one; none at the end.
std::optional<std::string> take_line(std::string_view& rest) {
  const size_t length = rest.find('\n');
  if (length == std::string_view::npos) return std::nullopt;
  std::string line(rest.substr(0, length));
  rest.remove_prefix(length + 1);
  return line;
}

std::string head_line(const Head& head) {
  return std::to_string(head.size) + " pixels, " + std::to_string(head.count) + " images";
}

std::string color_line(uint32_t color) {
  char digits[9] = "";
  static_cast<void>(std::snprintf(digits, sizeof digits, "%06x", static_cast<unsigned>(color)));
  return digits;
}

/// None unless it reads just as it is written.
std::optional<uint32_t> color_of(const std::string& line) {
  unsigned color = 0;
  if (std::sscanf(line.c_str(), "%6x", &color) != 1 || color_line(color) != line)
    return std::nullopt;
  return color;
}

std::optional<Head> head_of(const std::string& line) {
  Head head;
  if (std::sscanf(line.c_str(), "%4u pixels, %5u images", &head.size, &head.count) != 2 ||
      head_line(head) != line) {
    return std::nullopt;
  }
  return head;
}

}  // namespace

MemoryImageList::MemoryImageList(uint32_t size, std::vector<uint32_t> colors)
    : size_(size), colors_(std::move(colors)) {}

int MemoryImageList::append(const Icon& icon) {
  enter("append");
  const auto* const own = dynamic_cast<const MemoryIcon*>(&icon);
  if (full_ || own == nullptr) return -1;
  colors_.push_back(own->color());
  return static_cast<int>(colors_.size()) - 1;
}

int MemoryImageList::count() const {
  enter("count");
  return static_cast<int>(colors_.size());
}

ImageList::Written MemoryImageList::write(std::string& bytes) const {
  enter("write");
  if (written_ != Written::yes) return written_;
  bytes = head_line({size_, static_cast<unsigned>(colors_.size())}).append("\n");
  for (const uint32_t color : colors_)
    bytes.append(color_line(color)).append("\n");
  return Written::yes;
}

std::unique_ptr<ImageList> MemoryImageLists::fresh() {
  calls_.emplace_back("fresh");
  return std::make_unique<MemoryImageList>(size_, std::vector{MemoryImageList::kDefaultColor});
}

std::unique_ptr<ImageList> MemoryImageLists::read(const std::string& bytes, bool& other_size) {
  calls_.emplace_back("read");
  other_size = false;
  std::string_view rest = bytes;
  const auto head = take_line(rest);
  const auto size_and_count = head ? head_of(*head) : std::nullopt;
  std::vector<uint32_t> colors;
  while (!rest.empty()) {
    const auto line = take_line(rest);
    const auto color = line ? color_of(*line) : std::nullopt;
    if (!color) return nullptr;
    colors.push_back(*color);
  }
  if (!size_and_count || colors.empty() || colors.size() != size_and_count->count) return nullptr;
  other_size = size_and_count->size != size_;
  return other_size ? nullptr : std::make_unique<MemoryImageList>(size_, std::move(colors));
}
