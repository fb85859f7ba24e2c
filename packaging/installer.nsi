; The installer for both kinds of Windows: it puts the 64-bit program on a 64-bit system, else the 32-bit one.
;
; ./package defines VERSION, VERSION_NUMBERS (four numbers), X64 and X86 (the folders to pack), LISTS (the folder of the
; generated lists of files), PRODUCT_ICON and OUTPUT. NATIVE64 makes a 64-bit installer of the same script, for systems that run
; nothing else, such as a 64-bit-only Wine.

Unicode true
!ifdef NATIVE64
  Target amd64-unicode
!else
  ; Runs on Windows XP and later, of both kinds.
  Target x86-unicode
!endif
SetCompressor /SOLID lzma
; Files get the time of their installation, and the installer has the same bytes whenever it is made.
SetDateSave off
; A file that can't be written ends the installation; a silent one would leave it out and end with success.
AllowSkipFiles off

!include LogicLib.nsh
!include x64.nsh
!include FileFunc.nsh
!include MUI2.nsh

!define PRODUCT "Corvalt"
!define PUBLISHER "TessalySoft"
!define MAIN_PROGRAM "corvalt.exe"
!define CONSOLE_PROGRAM "corvaltc.exe"
!define UNINSTALLER "uninstall.exe"
!define APPS_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvalt"
!define MENU_FOLDER "$SMPROGRAMS\Tessaly Utilities"

; Exit codes of a silent run, beside NSIS's own: 0 is success, 1 cancelled by the user, 2 aborted by the script.
!define CODE_ABORTED 2

Name "${PRODUCT}"
OutFile "${OUTPUT}"
RequestExecutionLevel admin
ShowInstDetails nevershow
ShowUninstDetails nevershow
BrandingText "${PUBLISHER} ${PRODUCT} ${VERSION}"

VIProductVersion "${VERSION_NUMBERS}"
VIAddVersionKey "ProductName" "Tessaly Utilities"
VIAddVersionKey "FileDescription" "Installs the registry cleaner ${PRODUCT}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "${PUBLISHER}"
VIAddVersionKey "LegalCopyright" "${PUBLISHER}"

!define MUI_ICON "${PRODUCT_ICON}"
!define MUI_UNICON "${PRODUCT_ICON}"
!define MUI_FINISHPAGE_NOAUTOCLOSE
!define MUI_FINISHPAGE_RUN "$INSTDIR\${MAIN_PROGRAM}"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
; The page has room for three lines.
!define MUI_UNCONFIRMPAGE_TEXT_TOP "Unless started with /PURGE, this leaves the backups, in each user's application data \
below 'TessalySoft\Tessaly Utilities', and the settings and the ignore list, in the registry below \
'HKEY_CURRENT_USER\Software\TessalySoft'."
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Var Is64Bit

!macro FindSystem
  StrCpy $Is64Bit 0
  !ifdef NATIVE64
    StrCpy $Is64Bit 1
  !else
    ${If} ${RunningX64}
      StrCpy $Is64Bit 1
    ${EndIf}
  !endif
  ${If} $Is64Bit = 1
    SetRegView 64
  ${EndIf}
  SetShellVarContext all
!macroend

; Windows XP starts the installer without asking for an administrator.
!macro CheckAdministrator
  UserInfo::GetAccountType
  Pop $0
  ${If} $0 != "Admin"
    MessageBox MB_OK|MB_ICONSTOP "Please run this as an administrator." /SD IDOK
    SetErrorLevel ${CODE_ABORTED}
    Quit
  ${EndIf}
!macroend

; A program that runs can't be replaced.
!macro CheckNotRunning PROGRAM
  ${If} ${FileExists} "$INSTDIR\${PROGRAM}"
    ClearErrors
    FileOpen $0 "$INSTDIR\${PROGRAM}" a
    ${If} ${Errors}
      MessageBox MB_OK|MB_ICONSTOP "${PROGRAM} is running. Please close it and try again." /SD IDOK
      SetErrorLevel ${CODE_ABORTED}
      Quit
    ${EndIf}
    FileClose $0
  ${EndIf}
!macroend

; The program's folder and the suite's around it, which the installer may have made, where they are empty: other programs
; of the suite and files of the user's stay.
!macro RemoveFolder FOLDER
  RMDir "${FOLDER}"
  ${GetParent} "${FOLDER}" $R0
  ${GetFileName} "$R0" $R1
  ${If} $R1 == "Tessaly Utilities"
    RMDir "$R0"
  ${EndIf}
!macroend

Function .onInit
  !insertmacro CheckAdministrator
  !insertmacro FindSystem
  ; /D= has set the folder already; else an older version's, else the usual one.
  ${If} $INSTDIR == ""
    ReadRegStr $INSTDIR HKLM "${APPS_KEY}" "InstallLocation"
  ${EndIf}
  ${If} $INSTDIR == ""
    ${If} $Is64Bit = 1
      StrCpy $INSTDIR "$PROGRAMFILES64\Tessaly Utilities\Corvalt"
    ${Else}
      StrCpy $INSTDIR "$PROGRAMFILES\Tessaly Utilities\Corvalt"
    ${EndIf}
  ${EndIf}
FunctionEnd

; The version that is there removes its own files, which may be others than this one's. Its uninstaller is run in place
; (_?=), so that it has ended when ExecWait returns.
Function RemoveOlderVersion
  ReadRegStr $0 HKLM "${APPS_KEY}" "InstallLocation"
  ${If} $0 != ""
  ${AndIf} ${FileExists} "$0\${UNINSTALLER}"
    ; One that can't be started sets the error flag.
    ClearErrors
    ExecWait '"$0\${UNINSTALLER}" /S _?=$0' $1
    ${If} ${Errors}
    ${OrIf} $1 <> 0
      MessageBox MB_OK|MB_ICONSTOP "The version in $0 could not be replaced." /SD IDOK
      SetErrorLevel ${CODE_ABORTED}
      Quit
    ${EndIf}
    Delete "$0\${UNINSTALLER}"
    !insertmacro RemoveFolder "$0"
  ${EndIf}
FunctionEnd

Section
  !insertmacro CheckNotRunning "${MAIN_PROGRAM}"
  !insertmacro CheckNotRunning "${CONSOLE_PROGRAM}"
  Call RemoveOlderVersion
  ${If} $Is64Bit = 1
    !include "${LISTS}\x64.nsh"
  ${Else}
    !include "${LISTS}\x86.nsh"
  ${EndIf}
  !include "${LISTS}\common.nsh"
  SetOutPath "$INSTDIR"
  ClearErrors
  WriteUninstaller "$INSTDIR\${UNINSTALLER}"
  ${If} ${Errors}
    MessageBox MB_OK|MB_ICONSTOP "The uninstaller could not be written; ${PRODUCT} is not whole." /SD IDOK
    SetErrorLevel ${CODE_ABORTED}
    Quit
  ${EndIf}

  CreateDirectory "${MENU_FOLDER}"
  CreateShortCut "${MENU_FOLDER}\Corvalt.lnk" "$INSTDIR\${MAIN_PROGRAM}" "" "$INSTDIR\${MAIN_PROGRAM}" 0 "" "" \
    "Looks for entries in the registry that point to things that no longer exist"

  WriteRegStr HKLM "${APPS_KEY}" "DisplayName" "Corvalt Registry Cleaner"
  WriteRegStr HKLM "${APPS_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${APPS_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKLM "${APPS_KEY}" "DisplayIcon" "$INSTDIR\${MAIN_PROGRAM},0"
  WriteRegStr HKLM "${APPS_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${APPS_KEY}" "UninstallString" '"$INSTDIR\${UNINSTALLER}"'
  WriteRegStr HKLM "${APPS_KEY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER}" /S'
  WriteRegDWORD HKLM "${APPS_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${APPS_KEY}" "NoRepair" 1
  ; In KB, of what is in the lists.
  ${If} $Is64Bit = 1
    WriteRegDWORD HKLM "${APPS_KEY}" "EstimatedSize" ${X64_SIZE}
  ${Else}
    WriteRegDWORD HKLM "${APPS_KEY}" "EstimatedSize" ${X86_SIZE}
  ${EndIf}
SectionEnd

Function un.onInit
  !insertmacro CheckAdministrator
  !insertmacro FindSystem
FunctionEnd

; /PURGE: what the program has stored for the user that runs the uninstaller goes first, as long as the program is
; there that knows what belongs to it. What could not be removed can be tried again: then nothing is uninstalled.
Function un.Purge
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/PURGE" $1
  ${If} ${Errors}
    Return
  ${EndIf}
  nsExec::Exec '"$INSTDIR\${CONSOLE_PROGRAM}" purge --yes'
  Pop $0
  ${If} $0 != 0
    MessageBox MB_OK|MB_ICONSTOP "The backups and settings of ${PRODUCT} could not be removed; nothing was \
      uninstalled. 'corvaltc purge --yes' tells why." /SD IDOK
    SetErrorLevel ${CODE_ABORTED}
    Quit
  ${EndIf}
FunctionEnd

Section "Uninstall"
  !insertmacro CheckNotRunning "${MAIN_PROGRAM}"
  !insertmacro CheckNotRunning "${CONSOLE_PROGRAM}"
  Call un.Purge
  !include "${LISTS}\remove.nsh"
  Delete "$INSTDIR\${UNINSTALLER}"
  !insertmacro RemoveFolder "$INSTDIR"
  Delete "${MENU_FOLDER}\Corvalt.lnk"
  RMDir "${MENU_FOLDER}"
  DeleteRegKey HKLM "${APPS_KEY}"
SectionEnd
