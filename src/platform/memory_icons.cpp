#include "platform/memory_icons.h"

namespace {

std::string upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

}  // namespace

void MemoryIcons::add_icon(const std::string& file, int32_t index, bool large, uint32_t color) {
  icons_[{upper(file), index, large}] = color;
}

void MemoryIcons::add_icon(const std::string& file, int32_t index, uint32_t color) {
  add_icon(file, index, false, color);
  add_icon(file, index, true, color);
}

std::vector<std::string> MemoryIcons::calls() const {
  const ORLO::Lock hold(lock_);
  return calls_;
}

void MemoryIcons::forget_calls() {
  const ORLO::Lock hold(lock_);
  calls_.clear();
}

std::unique_ptr<Icon> MemoryIcons::extract(const char* file, int32_t index, bool large) {
  {
    const ORLO::Lock hold(lock_);
    calls_.push_back(std::string(file) + ' ' + std::to_string(index) +
                     (large ? " large" : " small"));
  }
  if (on_extract) on_extract();
  const auto found = icons_.find({upper(file), index, large});
  if (failing_ || found == icons_.end()) return nullptr;
  return std::make_unique<MemoryIcon>(found->second);
}
