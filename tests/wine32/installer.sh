#!/usr/bin/env bash
# The installer that users get, which is a 32-bit program: installed, used and uninstalled where 32-bit programs run.
# Run it with tools/tree32. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."

work=$(mktemp -d)
source tests/support/checks.sh
source tests/support/installation.sh

program_folder="$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt"
setup=$(echo build/package/Corvalt-*-setup.exe)

run_windows() {
  wine "$@"
}

program_files() {
  (cd "$program_folder" && find . -type f | sort)
}

wine "$setup" /S || true
# A Wine without 32-bit programs runs the installer as nothing, and with success.
ok "the installer writes files" test -s "$program_folder/corvaltc.exe"
(cd build/package/x86 && find . -type f && echo ./uninstall.exe) | sort >"$work/expected"
program_files >"$work/installed"
ok "they are those of the 32-bit program" diff "$work/expected" "$work/installed"
ok "the 32-bit console program is there" cmp build/package/x86/corvaltc.exe "$program_folder/corvaltc.exe"
ok "Apps knows it" wine reg query "$apps" /v DisplayVersion
code=0
wine "$installed\\corvaltc.exe" scan --sections 3 --quiet || code=$?
ok "the installed program scans" test $((code < 2)) = 1
ok "it uninstalls silently" uninstall
ok "nothing of it is left" test ! -e "$program_folder"

echo "$passed passed, $failed failed"
exit $((failed > 0))
