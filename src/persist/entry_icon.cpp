#include "persist/entry_icon.h"

#include <cstring>

#include "inventory/text_helpers.h"

namespace {

/// A file and which of its icons.
struct IconPlace {
  String file;
  int32_t index = 0;
};

/// The number behind the path's comma, unless there are arguments: then their first piece that
/// isn't empty.
IconPlace icon_place(const IconSpec& spec) {
  const char* const path = spec.path.c_str();
  const char* const end = path + std::strcspn(path, ",");
  const char* index = *end == ',' ? end + 1 : end;
  if (!spec.args.empty()) index = spec.args.c_str() + std::strspn(spec.args.c_str(), ",");
  return {String(path, end), leading_number(index)};
}

}  // namespace

std::unique_ptr<Icon> loadEntryIcon(const UninstallEntry& entry, bool large, Files& files,
                                    IconExtractor& icons) {
  const IconPlace place = icon_place(SplitIconSpec(entry.displayIcon, files));
  auto icon = icons.extract(place.file.c_str(), place.index, large);
  for (const String* command : {&entry.uninstallCmd, &entry.modifyCmd}) {
    if (icon == nullptr && !command->empty()) icon = icons.extract(command->c_str(), 0, large);
  }
  return icon;
}
