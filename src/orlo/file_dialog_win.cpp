#include <cstring>

#include "orlo/file_dialog.h"
#include "orlo/orlowin.h"
// This needs what orlowin.h brings.
#include <commdlg.h>

namespace ORLO {
namespace {

constexpr size_t kNameRoom = 1024;

static_assert(sizeof(void*) != 4 || sizeof(OPENFILENAMEA) == 88);

}  // namespace

String SaveFileDialog::ask(DialogOwner owner, ModuleFunctions& functions) const {
  using GetSaveFileName = BOOL(WINAPI*)(OPENFILENAMEA*);
  const auto get_save_file_name =
      functions.require<GetSaveFileName>("COMDLG32", "GetSaveFileNameA");
  const String patterns = system_filter(filter);
  char name[kNameRoom] = {};
  lstrcpynA(name, file_name.c_str(), static_cast<int>(sizeof name));
  OPENFILENAMEA request = {};
  request.lStructSize = sizeof request;
  request.hwndOwner = static_cast<HWND>(owner);
  request.lpstrFilter = patterns.c_str();
  request.nFilterIndex = 1;
  request.lpstrFile = name;
  request.nMaxFile = sizeof name;
  request.lpstrTitle = title.empty() ? nullptr : title.c_str();
  request.lpstrDefExt = default_extension.empty() ? nullptr : default_extension.c_str();
  request.Flags = flags;
  return get_save_file_name(&request) ? String(name) : String();
}

}  // namespace ORLO
