; The setup: for one user without elevation, or for all users of the machine. Compiled by
; scripts/release.sh, which defines
;   VERSION, VERSION_NUMBERS         as the publisher writes it; as four numbers
;   HOME_PAGE, MAIL, ISSUE_TRACKER   what the list of packages tells of us
;   FILES, INSTALLED_KB              the folder of what is installed, and its size
;   ICON, OUTPUT                     paths
;
; Switches: /S silent, /AllUsers, /CurrentUser, /NOSTART to leave out the program's start at the end,
; /D=FOLDER as the last one, without quotes. Those of the uninstaller: /S silent, /SETTINGS to remove
; the user's settings, too. Of both: /WAIT=SECONDS, how long a silent run waits for the program's end
; where it still runs; else half a minute.
; Exit codes: 0 done, 1 cancelled, 2 broken off, and:
!define CODE_RUNNING 3    ; the program was still running
!define CODE_ELEVATION 4  ; the rights of an administrator were needed
!define CODE_FILE 5       ; a file couldn't be written or removed

Unicode true
RequestExecutionLevel user
ManifestDPIAware true
ManifestSupportedOS all
; Its other compressor is under a licence of its own.
SetCompressor /SOLID zlib

!include "MUI2.nsh"
!include "FileFunc.nsh"
!include "LogicLib.nsh"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Zolvane"
!define WAIT_MS 250
!define SILENT_WAITS 120  ; for the program's end: half a minute
!define VISIBLE_WAITS 20  ; five seconds, then the user is asked for help
!define WAITS_A_SECOND 4
!define SYNCHRONIZE 0x100000
!define ERROR_ACCESS_DENIED 5

Name "Zolvane ${VERSION}"
OutFile "${OUTPUT}"
BrandingText " "

Var scope           ; "user" or "machine"
Var switches
Var former          ; folder of the installation that is there already, or empty
Var former_version
Var running         ; 1 if the program is
Var welcome
Var start           ; 1 if the program is to be started at the end
Var settings        ; 1 if the user's settings go with the program
Var first_box
Var second_box

; --- Pages

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"

!define MUI_WELCOMEPAGE_TEXT "$welcome"
!define MUI_PAGE_CUSTOMFUNCTION_SHOW name_first_button
!insertmacro MUI_PAGE_WELCOME
Page custom show_scope leave_scope
!define MUI_PAGE_CUSTOMFUNCTION_PRE skip_if_installed
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_NOREBOOTSUPPORT
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "$(start_now)"
!define MUI_FINISHPAGE_RUN_FUNCTION start_program
!define MUI_PAGE_CUSTOMFUNCTION_SHOW preset_start
!insertmacro MUI_PAGE_FINISH

UninstPage custom un.show_settings un.leave_settings
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"

; --- Texts

!macro TEXT NAME ENGLISH GERMAN
  LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
  LangString ${NAME} ${LANG_GERMAN} "${GERMAN}"
!macroend
!define TEXT "!insertmacro TEXT"
!define PARAGRAPH "$\r$\n$\r$\n"

${TEXT} description "Shows what is installed on this computer" \
  "Zeigt, was auf diesem Computer installiert ist"
${TEXT} welcome_new \
  "Zolvane shows in one list everything that is installed on this computer.${PARAGRAPH}Choose Next \
to go on." \
  "Zolvane zeigt in einer Liste alles, was auf diesem Computer installiert \
ist.${PARAGRAPH}Klicken Sie auf Weiter, um fortzufahren."
${TEXT} welcome_same \
  "This version is installed already, in$\r$\n$former${PARAGRAPH}Choose Install to repair it. Your \
settings stay as they are." \
  "Diese Version ist bereits installiert, und zwar in$\r$\n$former${PARAGRAPH}Klicken Sie auf \
Installieren, um sie zu reparieren. Ihre Einstellungen bleiben erhalten."
${TEXT} welcome_other \
  "Zolvane $former_version is installed in$\r$\n$former${PARAGRAPH}Choose Install to replace \
it with version ${VERSION}. Your settings stay as they are." \
  "Zolvane $former_version ist installiert in$\r$\n$former${PARAGRAPH}Klicken Sie auf \
Installieren, um es durch die Version ${VERSION} zu ersetzen. Ihre Einstellungen bleiben erhalten."
${TEXT} scope_title "Who Is It For?" "Für wen?"
${TEXT} scope_subtitle "Choose who is to use Zolvane on this computer." \
  "Wählen Sie, wer Zolvane auf diesem Computer benutzen soll."
${TEXT} scope_user "Only for &me" "Nur für &mich"
${TEXT} scope_machine "For &all users of this computer; needs the rights of an administrator" \
  "Für &alle Benutzer dieses Computers; erfordert Administratorrechte"
${TEXT} needs_elevation \
  "Without the rights of an administrator Zolvane can't be installed or removed for all users." \
  "Ohne Administratorrechte kann Zolvane nicht für alle Benutzer installiert oder entfernt werden."
${TEXT} still_running "Zolvane is still running. Please close it, and then choose Retry." \
  "Zolvane läuft noch. Bitte beenden Sie es, und klicken Sie dann auf Wiederholen."
${TEXT} broken_off "Zolvane is still running. Nothing has been changed." \
  "Zolvane läuft noch. Es wurde nichts verändert."
${TEXT} not_written "Zolvane could not be installed: a file could not be written." \
  "Zolvane konnte nicht installiert werden: Eine Datei ließ sich nicht schreiben."
${TEXT} not_removed "zolvane.exe could not be removed. It may still be in use." \
  "zolvane.exe konnte nicht entfernt werden. Möglicherweise wird die Datei noch benutzt."
${TEXT} start_now "&Start Zolvane" "Zolvane &starten"
${TEXT} remove_title "Uninstall Zolvane" "Zolvane deinstallieren"
${TEXT} remove_subtitle "Zolvane will be removed from this computer." \
  "Zolvane wird von diesem Computer entfernt."
${TEXT} remove_from "Zolvane will be removed from this folder:" \
  "Zolvane wird aus diesem Ordner entfernt:"
${TEXT} remove_settings "Remove &my settings, too: window, language, known packages and icons" \
  "Auch &meine Einstellungen entfernen: Fenster, Sprache, bekannte Pakete und Symbole"

; --- The setup's own version resource

!macro VERSION_TEXTS LANGUAGE DESCRIPTION
  VIAddVersionKey /LANG=${LANGUAGE} CompanyName "Quillmere"
  VIAddVersionKey /LANG=${LANGUAGE} FileDescription "${DESCRIPTION}"
  VIAddVersionKey /LANG=${LANGUAGE} FileVersion "${VERSION_NUMBERS}"
  VIAddVersionKey /LANG=${LANGUAGE} LegalCopyright "© 2026 Quillmere"
  VIAddVersionKey /LANG=${LANGUAGE} ProductName "Zolvane"
  VIAddVersionKey /LANG=${LANGUAGE} ProductVersion "${VERSION_NUMBERS}"
!macroend
VIProductVersion "${VERSION_NUMBERS}"
VIFileVersion "${VERSION_NUMBERS}"
!insertmacro VERSION_TEXTS ${LANG_ENGLISH} "Zolvane Setup"
!insertmacro VERSION_TEXTS ${LANG_GERMAN} "Zolvane-Setup"

; --- What setup and uninstaller share. UN: "" or "un."; SELF: path of the one that it is for

; The program marks its run with two mutexes. One of another user may be there and not be open to us.
!macro LOOK_FOR_MUTEX NAME
  System::Call 'kernel32::OpenMutexW(i ${SYNCHRONIZE}, i 0, w "${NAME}") p.r0 ?e'
  Pop $1
  ${If} $0 P<> 0
    System::Call 'kernel32::CloseHandle(p r0)'
    StrCpy $running 1
  ${ElseIf} $1 = ${ERROR_ACCESS_DENIED}
    StrCpy $running 1
  ${EndIf}
!macroend

!macro SHARED UN SELF

; Sets $running, after at most $2 waits.
Function ${UN}wait_a_while
  ${Do}
    StrCpy $running 0
    !insertmacro LOOK_FOR_MUTEX "Quillmere-Zolvane"
    !insertmacro LOOK_FOR_MUTEX "Global\Quillmere-Zolvane"
    ${If} $running = 0
    ${OrIf} $2 <= 0
      Return
    ${EndIf}
    Sleep ${WAIT_MS}
    IntOp $2 $2 - 1
  ${Loop}
FunctionEnd

; Into $2.
Function ${UN}choose_silent_waits
  StrCpy $2 ${SILENT_WAITS}
  ClearErrors
  ${${UN}GetOptions} $switches "/WAIT=" $0
  ${IfNot} ${Errors}
    IntOp $2 $0 * ${WAITS_A_SECOND}
  ${EndIf}
FunctionEnd

; Returns when the program has ended; else breaks off. Whoever updates the program starts the setup
; as its last act, so there is hardly anything to wait for then.
Function ${UN}wait_for_end
  ${If} ${Silent}
    Call ${UN}choose_silent_waits
    Call ${UN}wait_a_while
  ${Else}
    ${Do}
      StrCpy $2 ${VISIBLE_WAITS}
      Call ${UN}wait_a_while
      ${If} $running = 0
        ${Break}
      ${EndIf}
    ${LoopWhile} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(still_running)" IDRETRY`
  ${EndIf}
  ${If} $running = 1
    SetErrorLevel ${CODE_RUNNING}
    Abort "$(broken_off)"
  ${EndIf}
FunctionEnd

; Chooses the folders and the half of the registry that go with $scope.
Function ${UN}apply_scope
  ${If} $scope == "machine"
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
FunctionEnd

; For all users an administrator is needed: starts itself anew as one and ends, or returns with the
; error flag set if that can't be.
Function ${UN}elevate_if_needed
  ClearErrors
  UserInfo::GetAccountType
  Pop $0
  ${If} $scope != "machine"
  ${OrIf} $0 == "Admin"
    Return
  ${EndIf}
  ${IfNot} ${Silent}
    ExecShell "runas" "${SELF}" "/AllUsers $switches"
    ${IfNot} ${Errors}
      Quit
    ${EndIf}
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(needs_elevation)"
  ${EndIf}
  SetErrors
FunctionEnd

; Removes what a setup has put into the folder $0, and nothing else. Leaves the error flag set if
; the program itself is in use.
Function ${UN}remove_files
  Delete "$0\zolvane.chm"
  Delete "$0\licences.txt"
  ClearErrors
  Delete "$0\zolvane.exe"
  ${If} ${Errors}
    Return
  ${EndIf}
  Delete "$0\uninstall.exe"
  RMDir "$0"
  ClearErrors
FunctionEnd

!macroend

!insertmacro SHARED "" "$EXEPATH"
!insertmacro SHARED "un." "$INSTDIR\uninstall.exe"

; --- The setup

; Sets $former and $former_version from the entry of $scope.
Function find_former
  Call apply_scope
  ReadRegStr $former SHCTX "${UNINSTALL_KEY}" "InstallLocation"
  ReadRegStr $former_version SHCTX "${UNINSTALL_KEY}" "DisplayVersion"
FunctionEnd

; What is there already decides, unless a switch does.
Function choose_scope
  StrCpy $scope "machine"
  Call find_former
  ${GetOptions} $switches "/AllUsers" $0
  ${IfNot} ${Errors}
    Return
  ${EndIf}
  StrCpy $first_box $former
  StrCpy $scope "user"
  Call find_former
  ${GetOptions} $switches "/CurrentUser" $0
  ${If} ${Errors}
  ${AndIf} $former == ""
  ${AndIf} $first_box != ""
    StrCpy $scope "machine"
    Call find_former
  ${EndIf}
FunctionEnd

Function choose_folder
  ${If} $former != ""
    StrCpy $INSTDIR $former
  ${ElseIf} $scope == "machine"
    StrCpy $INSTDIR "$PROGRAMFILES\Zolvane"
  ${Else}
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\Zolvane"
  ${EndIf}
FunctionEnd

Function choose_welcome
  ${If} $former == ""
    StrCpy $welcome "$(welcome_new)"
  ${ElseIf} $former_version == "${VERSION}"
    StrCpy $welcome "$(welcome_same)"
  ${Else}
    StrCpy $welcome "$(welcome_other)"
  ${EndIf}
FunctionEnd

Function .onInit
  ${GetParameters} $switches
  StrCpy $start 1
  ClearErrors
  ${GetOptions} $switches "/NOSTART" $0
  ${IfNot} ${Errors}
    StrCpy $start 0
  ${EndIf}
  ClearErrors
  Call choose_scope
  Call elevate_if_needed
  ${If} ${Errors}
    SetErrorLevel ${CODE_ELEVATION}
    Quit
  ${EndIf}
  ; Not empty if /D has set it.
  ${If} $INSTDIR == ""
    Call choose_folder
  ${EndIf}
  Call choose_welcome
FunctionEnd

; Where something is installed already, no page comes between the first one and the files.
Function name_first_button
  ${If} $former != ""
    GetDlgItem $0 $HWNDPARENT 1
    SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^InstallBtn)"
  ${EndIf}
FunctionEnd

Function skip_if_installed
  ${If} $former != ""
    Abort
  ${EndIf}
FunctionEnd

Function show_scope
  Call skip_if_installed
  !insertmacro MUI_HEADER_TEXT "$(scope_title)" "$(scope_subtitle)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 10u 10u 280u 12u "$(scope_user)"
  Pop $first_box
  ${NSD_CreateRadioButton} 10u 28u 280u 12u "$(scope_machine)"
  Pop $second_box
  ${If} $scope == "machine"
    ${NSD_Check} $second_box
  ${Else}
    ${NSD_Check} $first_box
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function leave_scope
  StrCpy $3 $scope
  StrCpy $scope "user"
  ${NSD_GetState} $second_box $0
  ${If} $0 = ${BST_CHECKED}
    StrCpy $scope "machine"
  ${EndIf}
  Call elevate_if_needed
  ${If} ${Errors}
    StrCpy $scope $3
    Abort
  ${EndIf}
  ${If} $scope != $3
    Call find_former
    Call choose_folder
  ${EndIf}
FunctionEnd

Function preset_start
  ${If} $start = 0
    ${NSD_Uncheck} $mui.FinishPage.Run
  ${EndIf}
FunctionEnd

Function start_program
  SetOutPath "$INSTDIR"
  Exec '"$INSTDIR\zolvane.exe"'
FunctionEnd

; What the list of packages shows of us.
Function write_entry
  ${GetTime} "" "L" $0 $1 $2 $3 $4 $5 $6
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallDate" "$2$1$0"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "Zolvane"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\zolvane.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "Quillmere"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Comments" "$(description)"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Contact" "${MAIL}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "HelpLink" "${ISSUE_TRACKER}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "URLInfoAbout" "${HOME_PAGE}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "URLUpdateInfo" "${HOME_PAGE}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" ${INSTALLED_KB}
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
FunctionEnd

Section
  Call wait_for_end
  Call apply_scope
  SetOutPath "$INSTDIR"
  ClearErrors
  File "${FILES}/zolvane.exe"
  File "${FILES}/zolvane.chm"
  File "${FILES}/licences.txt"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  ${If} ${Errors}
    SetErrorLevel ${CODE_FILE}
    Abort "$(not_written)"
  ${EndIf}
  CreateShortcut "$SMPROGRAMS\Zolvane.lnk" "$INSTDIR\zolvane.exe" "" "" "" "" "" "$(description)"
  ClearErrors
  Call write_entry
  ${If} ${Errors}
    SetErrorLevel ${CODE_FILE}
    Abort "$(not_written)"
  ${EndIf}
  ; Another folder was asked for: the program moves there.
  ${If} $former != ""
  ${AndIf} $former != "$INSTDIR"
    StrCpy $0 $former
    Call remove_files
  ${EndIf}
  ; Has nothing to do where no update has left anything, and says so by its exit code.
  ExecWait '"$INSTDIR\zolvane.exe" -postupdate'
  ${If} ${Silent}
  ${AndIf} $start = 1
    Call start_program
  ${EndIf}
SectionEnd

; --- The uninstaller

; For one user only if that user's entry names this folder.
Function un.onInit
  ${un.GetParameters} $switches
  StrCpy $settings 0
  ClearErrors
  ${un.GetOptions} $switches "/SETTINGS" $0
  ${IfNot} ${Errors}
    StrCpy $settings 1
  ${EndIf}
  StrCpy $scope "machine"
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 == $INSTDIR
    StrCpy $scope "user"
  ${EndIf}
  Call un.elevate_if_needed
  ${If} ${Errors}
    SetErrorLevel ${CODE_ELEVATION}
    Quit
  ${EndIf}
FunctionEnd

Function un.show_settings
  !insertmacro MUI_HEADER_TEXT "$(remove_title)" "$(remove_subtitle)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 0 0 100% 12u "$(remove_from)"
  Pop $0
  ${NSD_CreateText} 0 13u 100% 12u "$INSTDIR"
  Pop $0
  SendMessage $0 ${EM_SETREADONLY} 1 0
  ${NSD_CreateCheckBox} 0 40u 100% 12u "$(remove_settings)"
  Pop $first_box
  ${If} $settings = 1
    ${NSD_Check} $first_box
  ${EndIf}
  GetDlgItem $0 $HWNDPARENT 1
  SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^UninstallBtn)"
  nsDialogs::Show
FunctionEnd

Function un.leave_settings
  ${NSD_GetState} $first_box $settings
FunctionEnd

; Those of the user who runs the uninstaller.
Function un.remove_settings
  SetShellVarContext current
  Delete "$LOCALAPPDATA\Quillmere\zolvane-cfg.xml"
  Delete "$LOCALAPPDATA\Quillmere\zolvane-hist.xml"
  Delete "$LOCALAPPDATA\Quillmere\zolvane-imagelist.dat"
  Delete "$LOCALAPPDATA\Quillmere\zolvane-imagepaths.txt"
  RMDir "$LOCALAPPDATA\Quillmere"
  DeleteRegKey HKCU "Software\Quillmere\Zolvane"
  DeleteRegKey /ifempty HKCU "Software\Quillmere"
FunctionEnd

Section un.
  Call un.wait_for_end
  Call un.apply_scope
  StrCpy $0 $INSTDIR
  Call un.remove_files
  ${If} ${Errors}
    SetErrorLevel ${CODE_FILE}
    Abort "$(not_removed)"
  ${EndIf}
  ${If} $scope == "user"
    RMDir "$LOCALAPPDATA\Programs"
  ${EndIf}
  Delete "$SMPROGRAMS\Zolvane.lnk"
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  ${If} $settings = 1
    Call un.remove_settings
  ${EndIf}
SectionEnd
