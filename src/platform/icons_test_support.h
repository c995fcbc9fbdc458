// What the contract of icons and image lists is tested on: both, with files to take icons from.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/icon_file_test_support.h"
#include "platform/icons.h"
#include "platform/image_list.h"

/// Files that a test may make in a folder of its own. Icons are of one colour.
class IconsBed {
 public:
  virtual ~IconsBed() = default;
  virtual IconExtractor& icons() = 0;
  virtual ImageLists& lists() = 0;
  /// Without a separator at the end.
  virtual std::string folder() const = 0;
  virtual void add_file(const std::string& name, const std::string& content) = 0;
  virtual void add_icon_file(const std::string& name, const IconPicture& picture) = 0;
  virtual void add_library(const std::string& name, const std::vector<ResourceIcon>& icons) = 0;
  /// How many icons and lists there are.
  virtual int live() const = 0;
  virtual uint32_t color(const Icon& icon) const = 0;
  virtual uint32_t color(const ImageList& list, int index) const = 0;
  /// What a list of images of another size has written.
  virtual std::string bytes_of_other_size() const = 0;
};

struct IconsBedMaker {
  const char* name;
  std::function<std::unique_ptr<IconsBed>()> make;
};

inline void PrintTo(const IconsBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of IconExtractor, ImageList and ImageLists that every implementation keeps.
class IconsContract : public ::testing::TestWithParam<IconsBedMaker> {
 protected:
  static constexpr int kNone = -1;
  static constexpr uint32_t kRed = 0xFF0000;
  static constexpr uint32_t kGreen = 0x00FF00;
  static constexpr uint32_t kBlue = 0x0000FF;
  static constexpr uint32_t kWhite = 0xFFFFFF;

  IconsContract() : bed_(GetParam().make()) {}

  IconsBed& bed() { return *bed_; }
  std::string whole(const std::string& name) { return bed().folder() + '\\' + name; }
  std::unique_ptr<Icon> extract(const std::string& name, int32_t index = 0, bool large = false) {
    return bed().icons().extract(whole(name).c_str(), index, large);
  }
  /// The colour of an icon that is extracted; kNone if there is none.
  int64_t extracted(const std::string& name, int32_t index, bool large = false);
  std::unique_ptr<ImageList> list_of(const std::vector<uint32_t>& colors);

 private:
  std::unique_ptr<IconsBed> bed_;
};
