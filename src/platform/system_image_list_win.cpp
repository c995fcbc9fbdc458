#include "platform/system_image_list.h"

#include <cstring>

#include "platform/image_list_bytes.h"
#include "platform/system_icon.h"
// This needs what orlowin.h brings.
#include <objbase.h>

namespace {

constexpr UINT kListFlags = ILC_COLOR32 | ILC_MASK;
/// Side of the default image in the resources.
constexpr int kDrawnSize = 16;

struct StreamTraits {
  using Handle = IStream*;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle stream) noexcept { stream->Release(); }
};
using OwnedStream = ORLO::OwnedHandle<StreamTraits>;
using OwnedBlock = ORLO::OwnedHandle<ORLO::NullableHandleTraits<HGLOBAL, &GlobalFree>>;
using OwnedDc = ORLO::OwnedHandle<ORLO::NullableHandleTraits<HDC, &DeleteDC>>;

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

/// A picture selected into a device context of its own.
class Canvas {
 public:
  explicit Canvas(HBITMAP bitmap) noexcept
      : dc_(CreateCompatibleDC(nullptr)), former_(SelectObject(dc_.get(), bitmap)) {}
  ~Canvas() { SelectObject(dc_.get(), former_); }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  HDC dc() const noexcept { return dc_.get(); }

 private:
  const OwnedDc dc_;
  const HGDIOBJ former_;
};

ORLO::OwnedBitmap load_bitmap(HINSTANCE module, unsigned id) noexcept {
  return ORLO::OwnedBitmap(static_cast<HBITMAP>(
      LoadImageA(module, MAKEINTRESOURCEA(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
}

/// 24 bits to a pixel leave no room for an alpha channel: the mask alone decides. A mask is of 1.
ORLO::OwnedBitmap make_bitmap(const SIZE& size, bool mask) noexcept {
  if (mask) return ORLO::OwnedBitmap(CreateBitmap(size.cx, size.cy, 1, 1, nullptr));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, size.cx, size.cy, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  return ORLO::OwnedBitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
}

/// The leftmost image of a resource at the given size, with edges as hard as they were drawn.
ORLO::OwnedBitmap load_image(HINSTANCE module, unsigned id, const SIZE& size, bool mask) noexcept {
  const ORLO::OwnedBitmap drawn = load_bitmap(module, id);
  ORLO::OwnedBitmap image = make_bitmap(size, mask);
  if (!drawn || !image) return ORLO::OwnedBitmap();
  const Canvas source(drawn.get());
  const Canvas target(image.get());
  SetStretchBltMode(target.dc(), COLORONCOLOR);
  if (!StretchBlt(target.dc(), 0, 0, size.cx, size.cy, source.dc(), 0, 0, kDrawnSize, kDrawnSize,
                  SRCCOPY)) {
    return ORLO::OwnedBitmap();
  }
  return image;
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
  const ORLO::OwnedBitmap image = load_image(module_, bitmap_, size, false);
  const ORLO::OwnedBitmap mask = load_image(module_, mask_, size, true);
  return image && mask && ImageList_Add(list, image.get(), mask.get()) == 0;
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
