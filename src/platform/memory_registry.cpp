#include "platform/memory_registry.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "orlo/locale.h"
#include "orlo/thread.h"
#include "platform/reg_text.h"
#include "platform/registry_tree.h"
#include "platform/utf16.h"

namespace {

constexpr RegStatus kBadPathname = 161;
constexpr uint32_t kEnumerateSubkeys = 0x0008;
constexpr uint32_t kNotifyRight = 0x0010;
constexpr ORLO::FileTime kFirstOfJanuary2009 =
    ORLO::kUnixEpoch + 1'230'768'000 * ORLO::kFileTimePerSecond;

constexpr std::u16string_view kSoftware = u"SOFTWARE";
constexpr std::u16string_view kWow64Step = u"\\WOW6432NODE";

std::string narrow(std::u16string_view text) {
  return ORLO::system_locale().narrow(text.data(), text.size());
}

std::u16string widen(const char* text) {
  if (text == nullptr) return std::u16string();
  return ORLO::system_locale().widen(text, std::strlen(text));
}

bool is_text(uint32_t type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

/// The value's data as the 8-bit functions give it.
std::string delivered(const RegistryValue& value) {
  return is_text(value.type) ? narrow(utf16_from_bytes(value.data)) : value.data;
}

RegStatus hand_over(const std::string& bytes, void* data, uint32_t& size) {
  const uint32_t room = std::exchange(size, static_cast<uint32_t>(bytes.size()));
  if (data == nullptr) return kRegSuccess;
  if (room < bytes.size()) return kRegMoreData;
  if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
  return kRegSuccess;
}

RegStatus hand_over_name(const std::u16string& wide, char* name, uint32_t& length) {
  const std::string bytes = narrow(wide);
  if (bytes.size() >= length) return kRegMoreData;
  std::memcpy(name, bytes.c_str(), bytes.size() + 1);
  length = static_cast<uint32_t>(bytes.size());
  return kRegSuccess;
}

template <typename Items>
uint32_t count(const Items& items) {
  return static_cast<uint32_t>(items.size());
}

/// An open key. The first call of notify settles what it watches.
struct OpenKey {
  std::shared_ptr<RegistryNode> node;
  uint32_t access = 0;
  bool settled = false;
  bool subtree = false;
  uint32_t filter = 0;
  std::vector<ORLO::Event*> waiting;

  bool watches(const RegistryNode& changed, uint32_t kind) const {
    if ((filter & kind) == 0) return false;
    return &changed == node.get() || (subtree && changed.is_below(*node));
  }

  void signal() noexcept {
    for (ORLO::Event* event : waiting)
      event->set();
    waiting.clear();
  }
};

struct InjectedFailure {
  std::string operation;
  std::u16string upper_name;
  RegStatus status;
  int times;
};

}  // namespace

struct MemoryRegistry::Impl {
  explicit Impl(View chosen_view)
      : view(chosen_view),
        tree([this](RegistryNode& node, uint32_t kind) { changed(node, kind); }) {}

  /// What each change from outside begins with.
  std::unique_lock<std::mutex> begin_change() {
    std::unique_lock<std::mutex> lock(mutex);
    now += ORLO::kFileTimePerSecond;
    return lock;
  }

  void changed(RegistryNode& node, uint32_t kind) {
    node.last_write = now;
    for (auto& [handle, key] : keys) {
      if (key->node->removed || key->watches(node, kind)) key->signal();
    }
  }

  RegStatus enter(const char* operation, const std::u16string& name, const RegistryNode* node,
                  const std::u16string& below);
  std::u16string redirected(const RegistryNode& start, const std::u16string& path,
                            uint32_t access) const;
  RegStatus open(std::shared_ptr<RegistryNode> start, const std::u16string& path, uint32_t access,
                 OpenKey*& opened);
  RegStatus remove(RegistryNode* start, const std::u16string& path);
  OpenKey* find(const RegistryKey& key) const;
  RegStatus use(const char* operation, const OpenKey* key, uint32_t right,
                const std::u16string* item = nullptr);
  void apply(const RegStatement& statement, RegistryNode*& node);

  mutable std::mutex mutex;
  const View view;
  ORLO::FileTime now = kFirstOfJanuary2009;
  RegistryTree tree;
  std::map<RegistryKey::Handle, std::unique_ptr<OpenKey>> keys;
  std::vector<InjectedFailure> failures;
  std::vector<std::string> calls;
  std::string error;
};

/// Logs a call that goes to `node` (null if its handle is none) and to what lies at `below` there;
/// the status it has to fail with, or success.
RegStatus MemoryRegistry::Impl::enter(const char* operation, const std::u16string& name,
                                      const RegistryNode* node, const std::u16string& below) {
  calls.push_back(operation + (' ' + narrow(name)));
  if (failures.empty()) return kRegSuccess;
  const std::u16string upper = upcase(name);
  const std::u16string path =
      node == nullptr ? upper : upcase(node->path() + (below.empty() ? u"" : u"\\") + below);
  for (InjectedFailure& failure : failures) {
    if (failure.times == 0 || failure.operation != operation) continue;
    const std::u16string& wanted = failure.upper_name;
    if (!wanted.empty() && wanted != upper && wanted != path) continue;
    if (failure.times > 0) --failure.times;
    return failure.status;
  }
  return kRegSuccess;
}

/// The path as it leads from `start` in the view that the access flags and the process choose.
std::u16string MemoryRegistry::Impl::redirected(const RegistryNode& start,
                                                const std::u16string& path, uint32_t access) const {
  if (view == View::native || (access & kKeyWow64_64) != 0) return path;
  if (&start != tree.root(kLocalMachine).get()) return path;
  const std::u16string upper = upcase(path);
  if (!upper.starts_with(kSoftware)) return path;
  const std::u16string_view rest = std::u16string_view(upper).substr(kSoftware.size());
  const bool whole_piece = rest.empty() || rest.starts_with(u'\\');
  const bool explicit_view = rest.starts_with(kWow64Step) &&
                             (rest.size() == kWow64Step.size() || rest[kWow64Step.size()] == u'\\');
  if (!whole_piece || explicit_view) return path;
  return std::u16string(kSoftware).append(kWow64Step) + path.substr(kSoftware.size());
}

RegStatus MemoryRegistry::Impl::open(std::shared_ptr<RegistryNode> start,
                                     const std::u16string& path, uint32_t access,
                                     OpenKey*& opened) {
  const std::u16string native_path = start == nullptr ? path : redirected(*start, path, access);
  const RegStatus failed = enter("open", path, start.get(), native_path);
  if (failed != kRegSuccess) return failed;
  if (start == nullptr) return kRegInvalidHandle;
  if (start->removed) return kRegKeyDeleted;
  if (path.starts_with(u'\\')) return kBadPathname;
  RegistryNode* node = start->descend(native_path);
  if (node == nullptr) return kRegFileNotFound;
  auto key = std::make_unique<OpenKey>();
  key->node = node->shared_from_this();
  key->access = access;
  opened = key.get();
  keys.emplace(opened, std::move(key));
  return kRegSuccess;
}

RegStatus MemoryRegistry::Impl::remove(RegistryNode* start, const std::u16string& path) {
  const std::u16string native_path = start == nullptr ? path : redirected(*start, path, 0);
  const RegStatus failed = enter("delete_key", path, start, native_path);
  if (failed != kRegSuccess) return failed;
  if (start == nullptr) return kRegInvalidHandle;
  if (path.starts_with(u'\\')) return kBadPathname;
  const RegistryNode* node = start->descend(native_path);
  if (node == nullptr) return kRegFileNotFound;
  if (!node->subkeys.empty()) return kRegAccessDenied;
  now += ORLO::kFileTimePerSecond;
  tree.remove(node->path());
  return kRegSuccess;
}

OpenKey* MemoryRegistry::Impl::find(const RegistryKey& key) const {
  const auto found = keys.find(key.handle());
  return found == keys.end() ? nullptr : found->second.get();
}

/// Enters a call that uses an open key (null if its handle is none), or an item of it.
RegStatus MemoryRegistry::Impl::use(const char* operation, const OpenKey* key, uint32_t right,
                                    const std::u16string* item) {
  static const std::u16string kNone;
  const RegistryNode* node = key == nullptr ? nullptr : key->node.get();
  const std::u16string& own_name = node == nullptr ? kNone : node->name;
  const RegStatus failed =
      enter(operation, item == nullptr ? own_name : *item, node, item == nullptr ? kNone : *item);
  if (failed != kRegSuccess) return failed;
  if (node == nullptr) return kRegInvalidHandle;
  if (node->removed) return kRegKeyDeleted;
  return (key->access & right) == 0 ? kRegAccessDenied : kRegSuccess;
}

/// `node` is the key that values go to; null behind one that was removed.
void MemoryRegistry::Impl::apply(const RegStatement& statement, RegistryNode*& node) {
  switch (statement.kind) {
    case RegStatement::Kind::key:
      node = &tree.create(statement.name);
      break;
    case RegStatement::Kind::remove_key:
      tree.remove(statement.name);
      node = nullptr;
      break;
    case RegStatement::Kind::value:
      if (node != nullptr) tree.set(*node, statement.name, statement.type, statement.data);
      break;
    case RegStatement::Kind::remove_value:
      if (node != nullptr) tree.unset(*node, statement.name);
      break;
  }
}

MemoryRegistry::MemoryRegistry(View view) : impl_(std::make_unique<Impl>(view)) {}
MemoryRegistry::~MemoryRegistry() = default;

bool MemoryRegistry::load(std::string_view reg_text) {
  const RegText text = parse_reg_text(reg_text);
  const auto lock = impl_->begin_change();
  impl_->error = text.error;
  RegistryNode* node = nullptr;
  for (const RegStatement& statement : text.statements) {
    try {
      impl_->apply(statement, node);
    } catch (const std::invalid_argument& fault) {
      impl_->error = "line " + std::to_string(statement.line) + ": " + fault.what();
      break;
    }
  }
  return impl_->error.empty();
}

std::string MemoryRegistry::error() const {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  return impl_->error;
}

void MemoryRegistry::set_raw(std::string_view path, std::string_view name, uint32_t type,
                             std::string_view data) {
  const auto lock = impl_->begin_change();
  RegistryNode& node = impl_->tree.create(utf16_from_utf8(path));
  impl_->tree.set(node, utf16_from_utf8(name), type, std::string(data));
}

void MemoryRegistry::set_text(std::string_view path, std::string_view name,
                              std::u16string_view text) {
  set_raw(path, name, kRegSz, bytes_from_utf16(std::u16string(text) + u'\0'));
}

void MemoryRegistry::set_number(std::string_view path, std::string_view name, uint32_t number) {
  std::string data;
  for (int shift = 0; shift < 32; shift += 8) {
    data.push_back(static_cast<char>((number >> shift) & 0xFF));
  }
  set_raw(path, name, kRegDword, data);
}

void MemoryRegistry::create(std::string_view path) {
  const auto lock = impl_->begin_change();
  impl_->tree.create(utf16_from_utf8(path));
}

void MemoryRegistry::remove(std::string_view path) {
  const auto lock = impl_->begin_change();
  impl_->tree.remove(utf16_from_utf8(path));
}

void MemoryRegistry::remove_value(std::string_view path, std::string_view name) {
  const auto lock = impl_->begin_change();
  RegistryNode* node = impl_->tree.find(utf16_from_utf8(path));
  if (node != nullptr) impl_->tree.unset(*node, utf16_from_utf8(name));
}

void MemoryRegistry::set_last_write(std::string_view path, ORLO::FileTime time) {
  const auto lock = impl_->begin_change();
  impl_->tree.create(utf16_from_utf8(path)).last_write = time;
}

void MemoryRegistry::fail(std::string operation, std::string name, RegStatus status, int times) {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  impl_->failures.push_back({std::move(operation), upcase(utf16_from_utf8(name)), status, times});
}

std::vector<std::string> MemoryRegistry::calls() const {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  return impl_->calls;
}

void MemoryRegistry::clear_calls() {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  impl_->calls.clear();
}

size_t MemoryRegistry::open_keys() const {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  return impl_->keys.size();
}

RegStatus MemoryRegistry::open(int32_t root, const char* path, uint32_t access, RegistryKey& key) {
  OpenKey* opened = nullptr;
  RegStatus status = kRegSuccess;
  {
    const std::lock_guard<std::mutex> lock(impl_->mutex);
    status = impl_->open(impl_->tree.root(root), widen(path), access, opened);
  }
  // Without the lock: this closes the key that `key` held.
  key = RegistryKey(*this, opened);
  return status;
}

RegStatus MemoryRegistry::open(const RegistryKey& parent, const char* path, uint32_t access,
                               RegistryKey& key) {
  OpenKey* opened = nullptr;
  RegStatus status = kRegSuccess;
  {
    const std::lock_guard<std::mutex> lock(impl_->mutex);
    const OpenKey* above = impl_->find(parent);
    status = impl_->open(above == nullptr ? nullptr : above->node, widen(path), access, opened);
  }
  key = RegistryKey(*this, opened);
  return status;
}

RegStatus MemoryRegistry::info(const RegistryKey& key, KeyInfo& info) {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  const OpenKey* open_key = impl_->find(key);
  const RegStatus status = impl_->use("info", open_key, kKeyQueryValue);
  if (status != kRegSuccess) return status;
  const RegistryNode& node = *open_key->node;
  info = {};
  info.subkeys = count(node.subkeys);
  info.values = count(node.values);
  info.last_write = node.last_write;
  for (const auto& subkey : node.subkeys) {
    info.longest_subkey_name = std::max(info.longest_subkey_name, count(subkey->name));
  }
  for (const RegistryValue& value : node.values) {
    info.longest_value_name = std::max(info.longest_value_name, count(value.name));
    info.longest_value = std::max(info.longest_value, count(value.data));
  }
  return kRegSuccess;
}

RegStatus MemoryRegistry::subkey_at(const RegistryKey& key, uint32_t index, char* name,
                                    uint32_t& length) {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  const OpenKey* open_key = impl_->find(key);
  const bool exists = open_key != nullptr && index < open_key->node->subkeys.size();
  const std::u16string found = exists ? open_key->node->subkeys[index]->name : std::u16string();
  const RegStatus status = impl_->use("subkey_at", open_key, kEnumerateSubkeys, &found);
  if (status != kRegSuccess) return status;
  return exists ? hand_over_name(found, name, length) : kRegNoMoreItems;
}

RegStatus MemoryRegistry::value(const RegistryKey& key, const char* name, uint32_t& type,
                                void* data, uint32_t& size) {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  const OpenKey* open_key = impl_->find(key);
  const std::u16string wanted = widen(name);
  const RegStatus status = impl_->use("value", open_key, kKeyQueryValue, &wanted);
  if (status != kRegSuccess) return status;
  const RegistryValue* found = open_key->node->value(wanted);
  if (found == nullptr) return kRegFileNotFound;
  type = found->type;
  return hand_over(delivered(*found), data, size);
}

RegStatus MemoryRegistry::value_at(const RegistryKey& key, uint32_t index, char* name,
                                   uint32_t& name_length, uint32_t& type, void* data,
                                   uint32_t& size) {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  const OpenKey* open_key = impl_->find(key);
  const bool exists = open_key != nullptr && index < open_key->node->values.size();
  const RegistryValue found = exists ? open_key->node->values[index] : RegistryValue();
  const RegStatus status = impl_->use("value_at", open_key, kKeyQueryValue, &found.name);
  if (status != kRegSuccess) return status;
  if (!exists) return kRegNoMoreItems;
  const RegStatus named = hand_over_name(found.name, name, name_length);
  if (named != kRegSuccess) return named;
  type = found.type;
  return hand_over(delivered(found), data, size);
}

size_t MemoryRegistry::awaited() const {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  size_t count = 0;
  for (const auto& [handle, key] : impl_->keys)
    count += key->waiting.size();
  return count;
}

RegStatus MemoryRegistry::notify(const RegistryKey& key, bool subtree, uint32_t filter,
                                 ORLO::Event& event) {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  OpenKey* open_key = impl_->find(key);
  const RegStatus status = impl_->use("notify", open_key, kNotifyRight);
  if (status != kRegSuccess) return status;
  if (!std::exchange(open_key->settled, true)) {
    open_key->subtree = subtree;
    open_key->filter = filter;
  }
  open_key->waiting.push_back(&event);
  return kRegSuccess;
}

RegStatus MemoryRegistry::delete_key(int32_t root, const char* path) {
  if (names_no_key(path)) return kRegAccessDenied;
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  return impl_->remove(impl_->tree.root(root).get(), widen(path));
}

void MemoryRegistry::close(RegistryKey::Handle handle) noexcept {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  const auto found = impl_->keys.find(handle);
  if (found == impl_->keys.end()) return;
  found->second->signal();
  impl_->keys.erase(found);
}
