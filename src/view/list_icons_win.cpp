#include "view/list_icons.h"

#include <utility>

#include "persist/icon_cache.h"
#include "platform/resource_ids.h"

ListIcons::ListIcons(const Parts& parts, HINSTANCE module)
    : dialog_(parts.dialog), list_(parts.list), model_(parts.model) {
  SystemImageLists lists(module, IDB_PACKAGES, IDB_PACKAGES_MASK);
  images_ = read_icon_cache(parts.para, model_.images(), lists);
  updater_ = std::make_unique<IconUpdater>(
      IconUpdater::Parts{model_, parts.listLock, model_.images(), *this, *this, parts.extractor,
                         parts.files, parts.para, parts.apply_thread_language});
  model_.use_images(images_.get());
  // The control would destroy them with itself.
  SetWindowLongPtrA(list_, GWL_STYLE, GetWindowLongPtrA(list_, GWL_STYLE) | LVS_SHAREIMAGELISTS);
  ListView_SetImageList(list_, static_cast<const SystemImageList&>(*images_).handle(), LVSIL_SMALL);
}

ListIcons::~ListIcons() {
  updater_.reset();
  // Control and model may live on, and must not use images that are gone.
  ListView_SetImageList(list_, nullptr, LVSIL_SMALL);
  model_.use_images(nullptr);
}

/// Not done if the window has gone.
void ListIcons::call(const Work& work) {
  awaited_ = &work;
  SendMessageA(dialog_, kCall, 0, 0);
  awaited_ = nullptr;
}

void ListIcons::answer_call() {
  if (const Work* const work = awaited_.exchange(nullptr)) (*work)();
}

int ListIcons::append(const Icon& icon) {
  int index = -1;
  call([&] { index = images_->append(icon); });
  return index;
}

void ListIcons::set_image(int line, int image) {
  call([&] {
    LVITEMA item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = line;
    item.iImage = image;
    SendMessageA(list_, LVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
  });
}
