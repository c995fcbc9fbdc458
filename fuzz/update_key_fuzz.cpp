// Any bytes as orders to build a tree of update keys, some of which can't be opened.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/updates_registry.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_registry.h"

namespace {

constexpr char kBelowRoot[] = "Updates";
// The third and the fourth are told as the first is; the last one can't be told at all.
constexpr const char* kKeyNames[] = {"a",   "KB1",      "\xC4\x81", "\xEF\xBD\x81",
                                     "b c", "\xC3\x84", "{1}.x",    "\xE6\x96\x87"};
constexpr const char* kValueNames[] = {
    "PackageName",      "ThisVersionInstalled", "PackageVersion", "InstalledBy",
    "InstalledDate",    "InstallerName",        "Publisher",      "PublishingGroup",
    "InstallerVersion", "ReleaseType",          "Other",          "\xC4\x81"};
constexpr uint32_t kTypes[] = {kRegSz, kRegBinary, kRegDword, kRegMultiSz};

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
  explicit Planter(MemoryRegistry& registry) : registry_(registry) { registry_.create(path_); }

  void step(std::string_view& bytes) {
    const auto order = static_cast<unsigned char>(take(bytes, 1)[0]);
    const unsigned choice = order >> 3;
    switch (order & 7) {
      case 0:
      case 1:
        path_.append("\\").append(kKeyNames[choice % std::size(kKeyNames)]);
        registry_.create(path_);
        break;
      case 2:
        if (path_.rfind('\\') > kRootLength) path_.resize(path_.rfind('\\'));
        break;
      case 3:
        path_.resize(kRootLength + sizeof kBelowRoot);
        break;
      case 4:
        registry_.fail("open", kKeyNames[choice % std::size(kKeyNames)], kRegAccessDenied);
        break;
      case 5:
        registry_.set_text(path_, kValueNames[choice % std::size(kValueNames)], u"y");
        break;
      default:
        set_raw(choice, bytes);
    }
  }

 private:
  static constexpr char kRoot[] = "HKEY_CURRENT_USER";
  static constexpr size_t kRootLength = sizeof kRoot - 1;

  void set_raw(unsigned choice, std::string_view& bytes) {
    const std::string_view size = take(bytes, 1);
    const size_t length = size.empty() ? 0 : static_cast<unsigned char>(size[0]) % 16;
    registry_.set_raw(path_, kValueNames[choice % std::size(kValueNames)],
                      kTypes[length % std::size(kTypes)], take(bytes, length));
  }

  MemoryRegistry& registry_;
  std::string path_ = std::string(kRoot).append("\\").append(kBelowRoot);
};

/// What the row tells stands in the key that it names.
void check_row(MemoryRegistry& registry, const Row& row) {
  const String& parent = cell(row, PackageColumn::parent).text;
  const String& name = cell(row, PackageColumn::name).text;
  const String path =
      String::formatted("%s%s%#s\\%#s", kBelowRoot, parent.empty() ? "" : "\\", parent, name);
  RegistryKey key;
  demand(registry.open(kCurrentUser, path.c_str(), kKeyRead, key) == kRegSuccess);
  const auto says = [&key](const char* value, const String& text) {
    return get_registry_text(key, value).length() == text.length() &&
           std::string_view(get_registry_text(key, value).c_str()) == text.c_str();
  };
  demand(!cell(row, PackageColumn::displayName).text.empty());
  demand(says("PackageName", cell(row, PackageColumn::displayName).text));
  demand(says("PackageVersion", cell(row, PackageColumn::displayVersion).text));
  demand(says("InstalledBy", cell(row, PackageColumn::user).text));
  demand(says("ThisVersionInstalled", "") || says("ThisVersionInstalled", "y") ||
         says("ThisVersionInstalled", "Y"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  MemoryRegistry registry;
  Planter planter(registry);
  while (!bytes.empty())
    planter.step(bytes);

  RegistryKey root;
  demand(registry.open(kCurrentUser, kBelowRoot, kKeyRead, root) == kRegSuccess);
  UpdatesRegistrySource source(registry, clock);
  std::set<RowKey> unseen;
  std::vector<Row> rows;
  const int count = source.ReadUpdatesRegistry(root, "", unseen,
                                               [&rows](const Row& row) { rows.push_back(row); });
  demand(registry.open_keys() == 1);
  demand(static_cast<size_t>(count) == rows.size() && rows.size() <= size);
  for (const Row& row : rows)
    check_row(registry, row);
  return 0;
}
