// Any bytes as orders to plant a tree of update keys, some of which can't be opened or read.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <set>
#include <string_view>
#include <vector>

#include "inventory/updates_registry.h"
#include "orlo/fixed_clock.h"
#include "planted_registry.h"

namespace {

constexpr ORLO::FileTime kFirstOfJanuary2009 =
    ORLO::kUnixEpoch + 1'230'768'000 * ORLO::kFileTimePerSecond;

// Each with a text of its own, so that a row that takes one for another is seen.
constexpr PlantedValue kValues[] = {{"PackageName", kRegSz, "title"},
                                    {"ThisVersionInstalled", kRegSz, "y"},
                                    {"PackageVersion", kRegSz, "1.2"},
                                    {"InstalledBy", kRegSz, "somebody"},
                                    {"InstalledDate", kRegSz, "5/1/2009"},
                                    {"InstallerName", kRegSz, "setup"},
                                    {"Publisher", kRegSz, "maker"},
                                    {"PublishingGroup", kRegSz, "group"},
                                    {"InstallerVersion", kRegSz, "3.4"},
                                    {"ReleaseType", kRegSz, "type"},
                                    {"Other", kRegSz, ""},
                                    {"a", kRegSz, "other"}};
constexpr uint32_t kTypes[] = {kRegSz, kRegBinary, kRegDword, kRegMultiSz};
// More than are read in one walk.
constexpr uint32_t kManyValues = 23;

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Takes the front of `bytes`, as far as there is that much.
std::string_view take(std::string_view& bytes, size_t count) {
  const std::string_view front = bytes.substr(0, count);
  bytes.remove_prefix(front.size());
  return front;
}

/// Goes from key to key, one step for each order, and leaves keys and values there.
class Planter {
 public:
  explicit Planter(PlantedRegistry& registry) : registry_(registry), key_(&registry.root()) {}

  void step(std::string_view& bytes) {
    const auto order = static_cast<unsigned char>(take(bytes, 1)[0]);
    const unsigned choice = order >> 3;
    const size_t name = choice % kPlantedNames.size();
    switch (order & 7) {
      case 0:
        key_ = &registry_.plant(*key_, name);
        key_->last_write = kFirstOfJanuary2009;
        break;
      case 1:
        key_->more_values = kManyValues;
        break;
      case 2:
        if (key_->parent != nullptr) key_ = key_->parent;
        break;
      case 3:
        key_ = &registry_.root();
        break;
      case 4:
        registry_.fail(static_cast<PlantedRegistry::Operation>(choice / kPlantedNames.size()),
                       name);
        break;
      case 5:
        PlantedRegistry::set(*key_, kValues[choice % std::size(kValues)]);
        break;
      case 6:
        set_raw(choice, bytes);
        break;
      default:
        set_time(take(bytes, sizeof key_->last_write));
    }
  }

 private:
  void set_raw(unsigned choice, std::string_view& bytes) {
    PlantedValue value = kValues[choice % std::size(kValues)];
    const std::string_view size = take(bytes, 1);
    const size_t length = size.empty() ? 0 : size_t{static_cast<unsigned char>(size[0])} % 16;
    value.type = kTypes[length % std::size(kTypes)];
    value.data = take(bytes, length);
    PlantedRegistry::set(*key_, value);
  }

  void set_time(std::string_view bytes) {
    if (!bytes.empty()) std::memcpy(&key_->last_write, bytes.data(), bytes.size());
  }

  PlantedRegistry& registry_;
  PlantedKey* key_;
};

bool is_update(const PlantedKey& key) {
  const std::string_view state = key.text("ThisVersionInstalled");
  return !key.text("PackageName").empty() && (state.empty() || state == "y" || state == "Y");
}

/// Counted without the reader.
size_t updates_below(const PlantedKey& key) {
  size_t count = 0;
  for (const PlantedKey* subkey : key.below) {
    if (subkey == nullptr || !kPlantedNames.at(subkey->name).opens) continue;
    count += (is_update(*subkey) ? 1 : 0) + updates_below(*subkey);
  }
  return count;
}

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

/// The key that the row names; null if there is none.
const PlantedKey* named_by(const Row& row, const PlantedKey& root) {
  std::string_view path = view(cell(row, PackageColumn::parent).text);
  const PlantedKey* key = &root;
  while (key != nullptr && !path.empty()) {
    key = key->find(take(path, path.find('\\')));
    path.remove_prefix(std::min<size_t>(1, path.size()));
  }
  return key == nullptr ? nullptr : key->find(view(cell(row, PackageColumn::name).text));
}

/// What the row tells stands in the key that it names.
void check_row(const Row& row, const PlantedKey& root) {
  const PlantedKey* key = named_by(row, root);
  demand(key != nullptr && is_update(*key));
  const auto says = [key, &row](const char* value, PackageColumn column) {
    return key->text(value) == view(cell(row, column).text);
  };
  demand(says("PackageName", PackageColumn::displayName));
  demand(says("PackageVersion", PackageColumn::displayVersion));
  demand(says("InstalledBy", PackageColumn::user));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  PlantedRegistry registry;
  Planter planter(registry);
  while (!bytes.empty())
    planter.step(bytes);

  RegistryKey root;
  demand(registry.open(kCurrentUser, "", kKeyRead, root) == kRegSuccess);
  UpdatesRegistrySource source(registry, clock);
  std::set<RowKey> unseen;
  std::vector<Row> rows;
  const int count = source.ReadUpdatesRegistry(root, "", unseen,
                                               [&rows](const Row& row) { rows.push_back(row); });
  demand(registry.open_keys() == 1);
  demand(static_cast<size_t>(count) == rows.size());
  const size_t updates = updates_below(registry.root());
  demand(registry.hides_keys() ? rows.size() <= updates : rows.size() == updates);
  for (const Row& row : rows)
    check_row(row, registry.root());
  return 0;
}
