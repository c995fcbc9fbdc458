#include "platform/system_image_list.h"

#include <cstring>

#include "platform/drawn_images.h"
#include "platform/image_list_bytes.h"
#include "platform/system_icon.h"
// This needs what orlowin.h brings.
#include <objbase.h>

namespace {

constexpr UINT kListFlags = ILC_COLOR32 | ILC_MASK;
/// What marks are drawn on.
constexpr COLORREF kMagenta = RGB(0xFF, 0x00, 0xFF);

struct StreamTraits {
  using Handle = IStream*;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle stream) noexcept { stream->Release(); }
};
using OwnedStream = ORLO::OwnedHandle<StreamTraits>;
using OwnedBlock = ORLO::OwnedHandle<ORLO::NullableHandleTraits<HGLOBAL, &GlobalFree>>;

/// A memory block's bytes for a scope; null if they can't be had.
class LockedBlock {
 public:
  explicit LockedBlock(HGLOBAL block) noexcept
      : block_(block), bytes_(static_cast<char*>(GlobalLock(block))) {}
  ~LockedBlock() {
    if (bytes_ != nullptr) GlobalUnlock(block_);
  }
  LockedBlock(const LockedBlock&) = delete;
  LockedBlock& operator=(const LockedBlock&) = delete;
  char* bytes() const noexcept { return bytes_; }

 private:
  const HGLOBAL block_;
  char* const bytes_;
};

/// A memory stream; of a new, empty block without one, which it frees with itself in any case.
OwnedStream make_stream(OwnedBlock block) noexcept {
  IStream* stream = nullptr;
  if (FAILED(CreateStreamOnHGlobal(block.get(), TRUE, &stream))) return OwnedStream();
  static_cast<void>(block.release());
  return OwnedStream(stream);
}

OwnedStream stream_of(const std::string& bytes) noexcept {
  OwnedBlock block(GlobalAlloc(GMEM_MOVEABLE, bytes.size()));
  if (!block) return OwnedStream();
  {
    const LockedBlock locked(block.get());
    if (locked.bytes() == nullptr) return OwnedStream();
    std::memcpy(locked.bytes(), bytes.data(), bytes.size());
  }
  return make_stream(std::move(block));
}

/// What was written into the stream; its block may be larger. False if that can't be had.
bool bytes_of(IStream* stream, std::string& bytes) {
  STATSTG state{};
  HGLOBAL block = nullptr;
  if (FAILED(stream->Stat(&state, STATFLAG_NONAME))) return false;
  if (FAILED(GetHGlobalFromStream(stream, &block))) return false;
  const LockedBlock locked(block);
  if (locked.bytes() == nullptr || state.cbSize.QuadPart > GlobalSize(block)) return false;
  bytes.assign(locked.bytes(), static_cast<size_t>(state.cbSize.QuadPart));
  return true;
}

SIZE small_icon_size() noexcept {
  return {GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON)};
}

bool icon_size(HIMAGELIST list, SIZE& size) noexcept {
  int width = 0;
  int height = 0;
  if (!ImageList_GetIconSize(list, &width, &height)) return false;
  size = {width, height};
  return true;
}

}  // namespace

int SystemImageList::append(const Icon& icon) {
  return list_ ? ImageList_ReplaceIcon(list_.get(), -1, ::handle(icon)) : -1;
}

int SystemImageList::count() const {
  return list_ ? ImageList_GetImageCount(list_.get()) : 0;
}

ImageList::Written SystemImageList::write(std::string& bytes) const {
  if (!list_) return Written::no;
  const OwnedStream stream = make_stream(OwnedBlock());
  if (!stream) return Written::no_stream;
  const bool written = ImageList_Write(list_.get(), stream.get()) && bytes_of(stream.get(), bytes);
  return written ? Written::yes : Written::no;
}

bool SystemImageLists::add_default(HIMAGELIST list) const {
  const SIZE size = small_icon_size();
  const ORLO::OwnedBitmap image = load_drawn_images(module_, bitmap_, 1, size, false);
  const ORLO::OwnedBitmap mask = load_drawn_images(module_, mask_, 1, size, true);
  if (!image || !mask || !blacken_see_through(image.get(), mask.get(), size)) return false;
  return ImageList_Add(list, image.get(), mask.get()) == 0;
}

std::unique_ptr<ImageList> SystemImageLists::fresh() {
  const SIZE size = small_icon_size();
  OwnedImageList list(ImageList_Create(size.cx, size.cy, kListFlags, 0, 1));
  // Without its default image the numbers of all others would be wrong.
  if (list && !add_default(list.get())) list.reset();
  if (list) ImageList_SetBkColor(list.get(), CLR_NONE);
  return std::make_unique<SystemImageList>(std::move(list));
}

std::unique_ptr<ImageList> SystemImageLists::read(const std::string& bytes, bool& other_size) {
  other_size = false;
  std::string checked = bytes;
  if (!check_image_list_bytes(checked)) return nullptr;
  const OwnedStream stream = stream_of(checked);
  if (!stream) return nullptr;
  OwnedImageList list(ImageList_Read(stream.get()));
  if (!list || ImageList_GetImageCount(list.get()) < 1) return nullptr;
  SIZE size{};
  if (!icon_size(list.get(), size)) return nullptr;
  const SIZE wanted = small_icon_size();
  other_size = size.cx != wanted.cx || size.cy != wanted.cy;
  if (other_size) return nullptr;
  ImageList_SetBkColor(list.get(), CLR_NONE);
  return std::make_unique<SystemImageList>(std::move(list));
}

OwnedImageList load_marks(HINSTANCE module, unsigned bitmap, int side) {
  const int count = count_drawn_images(module, bitmap);
  if (count == 0) return OwnedImageList();
  const ORLO::OwnedBitmap images = load_drawn_images(module, bitmap, count, {side, side}, false);
  OwnedImageList list(ImageList_Create(side, side, kListFlags, count, 1));
  if (!images || !list || ImageList_AddMasked(list.get(), images.get(), kMagenta) != 0) {
    return OwnedImageList();
  }
  ImageList_SetBkColor(list.get(), CLR_NONE);
  return list;
}
