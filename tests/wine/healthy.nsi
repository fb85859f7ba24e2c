; A small installer with the program for the command line, to see that installers work: makensis -DPROGRAM=... -DTARGET=...
Target amd64-unicode
Name "Corvalt Test Installer"
OutFile "${TARGET}"
InstallDir "C:\Corvalt Installed"
RequestExecutionLevel user
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvalt Test Installer"

Section
  SetOutPath "$INSTDIR"
  File "/oname=corvaltc.exe" "${PROGRAM}"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "${KEY}" "DisplayName" "Corvalt Test Installer"
  WriteRegStr HKLM "${KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
SectionEnd

Section "Uninstall"
  Delete "$INSTDIR\corvaltc.exe"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${KEY}"
SectionEnd
