#!/usr/bin/env bash
# The installer that users get, which is a 32-bit program: installed, used and uninstalled where 32-bit programs run.
# Run it with tools/tree32. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."

passed=0
failed=0
program_folder="$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt"
installed='C:\Program Files\Tessaly Utilities\Corvalt'
apps='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvalt'
setup=$(echo build/package/Corvalt-*-setup.exe)

ok() {
  local name=$1
  shift
  if "$@" >/tmp/last 2>&1; then
    passed=$((passed + 1))
    echo "ok    $name"
  else
    failed=$((failed + 1))
    echo "FAIL  $name"
    head -n 40 /tmp/last | sed 's/^/      /'
  fi
}

program_files() {
  (cd "$program_folder" && find . -type f | sort)
}

# The uninstaller goes on in a copy of itself.
uninstall() {
  local tries
  wine "$installed\\uninstall.exe" /S
  for ((tries = 0; tries < 300; ++tries)); do
    if ! wine reg query "$apps" >/dev/null 2>&1; then
      return
    fi
    sleep 0.1
  done
  return 1
}

wine "$setup" /S || true
# A Wine without 32-bit programs runs the installer as nothing, and with success.
ok "the installer writes files" test -s "$program_folder/corvaltc.exe"
(cd build/package/x86 && find . -type f && echo ./uninstall.exe) | sort >/tmp/expected
program_files >/tmp/installed
ok "they are those of the 32-bit program" diff /tmp/expected /tmp/installed
ok "the 32-bit console program is there" cmp build/package/x86/corvaltc.exe "$program_folder/corvaltc.exe"
ok "Apps knows it" wine reg query "$apps" /v DisplayVersion
code=0
wine "$installed\\corvaltc.exe" scan --sections 3 --quiet || code=$?
ok "the installed program scans" test $((code < 2)) = 1
ok "it uninstalls silently" uninstall
ok "nothing of it is left" test ! -e "$program_folder"

echo "$passed passed, $failed failed"
exit $((failed > 0))
