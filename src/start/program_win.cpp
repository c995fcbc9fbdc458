#include "start/program.h"

#include <clocale>
#include <memory>

#include "orlo/exception_handling.h"
#include "orlo/message_loop.h"
#include "orlo/report.h"
#include "persist/configuration.h"
#include "platform/language.h"
#include "platform/resource_ids.h"
#include "platform/system_version.h"
#include "start/export_run.h"
#include "start/post_update.h"
#include "start/switches.h"
#include "start/update_settings.h"
#include "view/uninstall_dlg.h"
// These need what orlowin.h brings.
#include <objbase.h>
#include <shlobj.h>

namespace {

/// Marks the process, so that an installer can see that the program is running, in this logon or
/// in any other. The handles stay open until the process ends.
void mark_process() {
  SECURITY_DESCRIPTOR everybody = {};
  InitializeSecurityDescriptor(&everybody, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&everybody, TRUE, nullptr, FALSE);
  SECURITY_ATTRIBUTES attributes = {};
  attributes.nLength = sizeof attributes;
  attributes.lpSecurityDescriptor = &everybody;
  CreateMutexA(&attributes, FALSE, "Quillmere-Zolvane");
  CreateMutexA(&attributes, FALSE, "Global\\Quillmere-Zolvane");
}

/// Empty if the shell doesn't tell.
String local_data_folder() {
  ITEMIDLIST* items = nullptr;
  if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_LOCAL_APPDATA, &items))) return String();
  char path[MAX_PATH] = {};
  const bool found = SHGetPathFromIDListA(items, path) != FALSE;
  CoTaskMemFree(items);
  return found ? String(path) : String();
}

void init_common_controls() {
  INITCOMMONCONTROLSEX classes = {};
  classes.dwSize = sizeof classes;
  classes.dwICC = ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES | ICC_PROGRESS_CLASS;
  InitCommonControlsEx(&classes);
}

UninstallReader::Services reader_services(const ProgramServices& program) {
  return {program.registry, program.files,    program.clock, program.installer,   program.wmi,
          program.accounts, system_version(), under_wow64(), &applyThreadLanguage};
}

int show_main_dialog(HINSTANCE instance, const UninstallPara& para,
                     const ProgramServices& program) {
  const Resources resources(instance, static_cast<uint16_t>(ui_locale_id()));
  const DialogServices services{
      reader_services(program),
      program.shell,
      program.icons,
      program.storage,
      program.inspection,
      program.update,
      update_settings(program.update.description_url, system_version(), para.noPersist),
      !para.noUpdate};
  const INT_PTR result =
      ORLO::Dialog::DoModal(instance, resources.dialog(IDD_MAIN), nullptr, [&](HWND window) {
        return std::make_unique<UninstallDlg>(window, std::make_unique<UninstallDlgPara>(para),
                                              resources, services);
      });
  ORLO::prepare_shutdown();
  // -1: the dialog never came up; its failure has been reported.
  return result == -1 ? 1 : 0;
}

int run(HINSTANCE instance, const Switches& switches, const ProgramServices& services) {
  UninstallPara para;
  para.langId = thread_language();
  para.noPersist = switches.noPersist;
  para.noUpdate = switches.noUpdate;
  if (!para.noPersist) {
    // Without it the paths would lead to the root of whatever drive is current.
    if (const String folder = local_data_folder(); !folder.empty()) set_paths(folder, para);
    readConfiguration(para);
  }
  set_ui_locale(choose_language(switches, para));
  applyThreadLanguage();
  std::setlocale(LC_COLLATE, "");
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  ORLO::install_exception_handling(true);
  init_common_controls();
  return show_main_dialog(instance, para, services);
}

}  // namespace

int run_program(HINSTANCE instance, const char* command_line, const ProgramServices& services) {
  ORLO::prepare_console();
  mark_process();
  const Switches switches = read_switches(command_line);
  if (switches.postUpdate) return clean_up_after_update();
  if (switches.doExport) return run_export(instance, switches, reader_services(services));
  try {
    return run(instance, switches, services);
  } catch (const ORLO::Exception& exception) {
    ORLO::report_exception(exception, nullptr);
  } catch (const std::exception& exception) {
    ORLO::report_std_exception(exception, nullptr);
  }
  return 1;
}
