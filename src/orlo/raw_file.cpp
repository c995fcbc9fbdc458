#include "orlo/raw_file.h"

#include <utility>

namespace ORLO {
namespace {

class AtOnceFile final : public OverlappedRawFile {
 public:
  explicit AtOnceFile(std::unique_ptr<RawFile> file) noexcept : file_(std::move(file)) {}

  uint32_t start_read(uint64_t offset, char* block, size_t size) override {
    done_ = file_->read(offset, block, size);
    return 0;
  }
  uint32_t start_write(uint64_t offset, const char* block, size_t size) override {
    done_ = file_->write(offset, block, size);
    return 0;
  }
  Transfer wait() override { return std::exchange(done_, {}); }
  void cancel() noexcept override { done_ = {}; }

 private:
  const std::unique_ptr<RawFile> file_;
  Transfer done_;
};

}  // namespace

std::unique_ptr<OverlappedRawFile> transfer_at_once(std::unique_ptr<RawFile> file) {
  if (file == nullptr) return nullptr;
  return std::make_unique<AtOnceFile>(std::move(file));
}

}  // namespace ORLO
