#include "platform/memory_storage.h"

#include <algorithm>
#include <utility>

#include "platform/utf16.h"

namespace {

// The platform's codes (STG_E_...).
constexpr auto kFileNotFound = static_cast<StorageStatus>(0x80030002);
constexpr auto kPathNotFound = static_cast<StorageStatus>(0x80030003);
constexpr auto kAccessDenied = static_cast<StorageStatus>(0x80030005);
constexpr auto kShareViolation = static_cast<StorageStatus>(0x80030020);
constexpr auto kMediumFull = static_cast<StorageStatus>(0x80030070);

}  // namespace

bool MemoryStorage::NameOrder::operator()(const std::u16string& a, const std::u16string& b) const {
  return upcase(a) < upcase(b);
}

class MemoryStorage::Stream final : public StorageStream {
 public:
  Stream(MemoryStorage& storage, std::set<std::u16string, NameOrder>& open,
         const std::u16string& name, std::string& bytes)
      : storage_(storage), open_(open), name_(name), bytes_(bytes) {
    open_.insert(name_);
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() override {
    storage_.log("close stream", name_);
    open_.erase(name_);
  }

  StorageStatus write(const void* data, size_t size) override {
    storage_.calls_.push_back("write " + std::to_string(size));
    if (const StorageStatus status = storage_.failure(Operation::write)) return status;
    const size_t taken = std::min(size, storage_.most_.value_or(size));
    bytes_.replace(std::min(position_, bytes_.size()), taken, static_cast<const char*>(data),
                   taken);
    position_ += taken;
    return taken == size ? 0 : kMediumFull;
  }

 private:
  MemoryStorage& storage_;
  std::set<std::u16string, NameOrder>& open_;
  const std::u16string name_;
  std::string& bytes_;
  size_t position_ = 0;
};

class MemoryStorage::File final : public CompoundFile {
 public:
  File(MemoryStorage& storage, std::u16string path, Content& content)
      : storage_(storage), path_(std::move(path)), content_(content) {
    content_.open = true;
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() override {
    storage_.log("close", path_);
    content_.open = false;
  }

  StorageStatus create_stream(const char16_t* name) override {
    storage_.log("create stream", name);
    if (const StorageStatus status = storage_.failure(Operation::create_stream)) return status;
    if (open_.count(name) != 0) return kAccessDenied;
    content_.streams[name].clear();
    return 0;
  }

  std::unique_ptr<StorageStream> open_stream(const char16_t* name, StorageStatus& status) override {
    storage_.log("open stream", name);
    const auto found = content_.streams.find(name);
    status = storage_.failure(Operation::open_stream);
    if (status == 0 && found == content_.streams.end()) status = kFileNotFound;
    if (status == 0 && open_.count(name) != 0) status = kAccessDenied;
    if (status != 0) return nullptr;
    return std::make_unique<Stream>(storage_, open_, found->first, found->second);
  }

  StorageStatus commit() override {
    storage_.calls_.push_back("commit");
    return storage_.failure(Operation::commit);
  }

 private:
  MemoryStorage& storage_;
  const std::u16string path_;
  Content& content_;  // stays where it is: the map's nodes don't move, and open files aren't erased
  std::set<std::u16string, NameOrder> open_;  ///< names of the streams that are open
};

const MemoryStorage::Streams* MemoryStorage::file(const std::u16string& path) const {
  const auto found = files_.find(path);
  return found == files_.end() || found->second.open ? nullptr : &found->second.streams;
}

std::unique_ptr<CompoundFile> MemoryStorage::create(const char16_t* path, StorageStatus& status) {
  log("create", path);
  status = failure(Operation::create);
  if (status == 0 && (*path == u'\0' || refused_.count(path) != 0)) status = kPathNotFound;
  if (status != 0) return nullptr;
  Content& content = files_[path];
  if (content.open) {
    status = kShareViolation;
    return nullptr;
  }
  content.streams.clear();
  return std::make_unique<File>(*this, path, content);
}

void MemoryStorage::log(const char* call, const std::u16string& name) {
  calls_.push_back(std::string(call).append(" ").append(utf8_from_utf16(name)));
}

StorageStatus MemoryStorage::failure(Operation operation) const {
  const auto found = failures_.find(operation);
  return found == failures_.end() ? 0 : found->second;
}
