# Sourced by scripts that install what users download. Expects run_windows, which runs a Windows program.

installed='C:\Program Files\Tessaly Utilities\Corvalt'
apps='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvalt'

# uninstall [OPTION...]: the uninstaller goes on in a copy of itself; waits until Apps no longer lists the program.
uninstall() {
  local tries
  run_windows "$installed\\uninstall.exe" /S "$@"
  for ((tries = 0; tries < 300; ++tries)); do
    if ! run_windows reg query "$apps" >/dev/null 2>&1; then
      return
    fi
    sleep 0.1
  done
  return 1
}
