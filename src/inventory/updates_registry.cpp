#include "inventory/updates_registry.h"

#include <string>

#include "inventory/text_helpers.h"
#include "orlo/locale.h"
#include "platform/utf16.h"

namespace {

using Field = PackageColumn;

constexpr size_t kNameRoom = 2048;
// A registry's own limit. Only a link to a key further up leads beyond it.
constexpr int kMostLevels = 512;
// Far more than any tree has. Two links that lead back up would double the walk at every level.
constexpr int kMostKeys = 200'000;

/// As the registry compares names, so that two names that open the same key are equal.
std::u16string compared_name(const String& name) {
  return upcase(ORLO::system_locale().widen(name.c_str(), name.length()));
}

bool is_installed(const String& state) {
  return state.empty() || (state.length() == 1 && (*state.c_str() == 'Y' || *state.c_str() == 'y'));
}

}  // namespace

struct UpdatesRegistrySource::Receiver {
  std::set<RowKey>& unseenKeys;
  const RowSink& deliver;
};

/// A key whose subkeys are being read.
struct UpdatesRegistrySource::Level {
  const RegistryKey& key;
  const String& path;
  DateTime written;
  int depth;
};

UpdatesRegistrySource::UpdatesRegistrySource(Registry& registry, const ORLO::Clock& clock)
    : registry_(registry), clock_(clock), name_(kNameRoom) {}

int UpdatesRegistrySource::ReadUpdatesRegistry(const RegistryKey& key, const String& parentPath,
                                               std::set<RowKey>& unseenKeys,
                                               const RowSink& deliver) {
  opened_ = 0;
  const DateTime written = write_time(info_of(registry_, key));
  return read_below({key, parentPath, written, 1}, {unseenKeys, deliver});
}

DateTime UpdatesRegistrySource::write_time(const std::optional<Registry::KeyInfo>& info) const {
  return info ? local_date(info->last_write, clock_) : DateTime();
}

// There may be hundreds of frames of this and of read_subkey() at a time: keep them small.
int UpdatesRegistrySource::read_below(const Level& level, const Receiver& receiver) {
  int rows = 0;
  // Names that differ outside the code page only are told alike and open the same key. Walking it
  // once for each of them would double the work at every level.
  std::set<std::u16string> names;
  for (uint32_t index = 0; opened_ < kMostKeys; ++index) {
    auto length = static_cast<uint32_t>(name_.size());
    if (registry_.subkey_at(level.key, index, name_.data(), length) != kRegSuccess) break;
    if (!is_subkey_name(name_.data(), length)) continue;
    const String name(name_.data());
    if (names.insert(compared_name(name)).second) rows += read_subkey(level, name, receiver);
  }
  return rows;
}

int UpdatesRegistrySource::read_subkey(const Level& level, const String& name,
                                       const Receiver& receiver) {
  ++opened_;
  RegistryKey subkey;
  if (registry_.open(level.key, name.c_str(), kKeyRead, subkey) != kRegSuccess) return 0;
  const auto info = info_of(registry_, subkey);
  values_.read(subkey, info ? &*info : nullptr);
  const int rows = deliver_update(level, name, receiver) ? 1 : 0;
  if (level.depth == kMostLevels) return rows;
  const String path = level.path.empty() ? name : String::formatted("%#s\\%#s", level.path, name);
  return rows + read_below({subkey, path, write_time(info), level.depth + 1}, receiver);
}

bool UpdatesRegistrySource::deliver_update(const Level& level, const String& name,
                                           const Receiver& receiver) {
  const String title = values_.text("PackageName");
  if (title.empty() || !is_installed(values_.text("ThisVersionInstalled"))) return false;
  Row row = make_source_row(
      String::formatted("MS Updates: %#s %#s %#s", values_.text("InstallerName"),
                        values_.text("InstallerVersion"), values_.text("ReleaseType")));
  cell(row, Field::name).text = name;
  cell(row, Field::displayName).text = title;
  cell(row, Field::displayVersion).text = values_.text("PackageVersion");
  cell(row, Field::parent).text = level.path;
  cell(row, Field::parentName).text = level.path;
  cell(row, Field::installDate).text =
      MergeDateText(values_.text("InstalledDate"), level.written, clock_);
  cell(row, Field::user).text = values_.text("InstalledBy");
  cell(row, Field::publisher).text =
      String::formatted("%#s %#s", values_.text("Publisher"), values_.text("PublishingGroup"));
  deliver_row(row, receiver.deliver, receiver.unseenKeys);
  return true;
}
