#include <windows.h>

#include "start/post_update.h"

namespace {

class SystemLeftovers final : public Leftovers {
 public:
  String temporary_folder() override {
    char path[MAX_PATH] = "";
    const DWORD length = GetTempPathA(MAX_PATH, path);
    return length < MAX_PATH ? String(path) : String();
  }
  void remove(const char* path) override { DeleteFileA(path); }
  void remove_at_next_start(const char* path) override {
    MoveFileExA(path, nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
  }
};

}  // namespace

int clean_up_after_update() {
  SystemLeftovers leftovers;
  return clean_up_after_update(leftovers);
}
