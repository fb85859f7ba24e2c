#!/usr/bin/env bash
# Folders that the user may not look into: what should lie there is never called missing. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."

# The superuser may look into every folder, unless he gives these rights up; Wine's server, which opens the files, too.
if ((EUID == 0)) && [[ ${1:-} != --as-user ]]; then
  exec setpriv --bounding-set=-dac_override,-dac_read_search bash "$0" --as-user
fi

source tools/wine.sh
trap stop_wine EXIT
work=$PWD/build/wine-denied
rm -rf "$work"
mkdir -p "$work"
source tests/support/winechecks.sh

# name_files NAME FOLDER: ten values that name files there. From the third question on the program lists a folder.
name_files() {
  local number
  for number in {0..9}; do
    printf '"%s"="C:\\\\Corvalt\\\\%s\\\\%s.dll"\r\n' "$1$number" "$2" "$number"
  done
}

reported() {
  grep -oE "\"valueName\": *\"$1[0-9]\"" "$work/found.json" | wc -l
}

denies() {
  ! ls "$drive/Corvalt/$1"
}

start_display
start_fresh_wine "$PWD/build/wine"
drive=$WINEPREFIX/drive_c
trap 'chmod -R u+rwx "$drive/Corvalt"; stop_wine' EXIT
mkdir -p "$drive"/Corvalt/{open,denied/below,entered}
touch "$drive"/Corvalt/{open/0,entered/{0..9}}.dll
{
  printf 'REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Denied]\r\n'
  name_files open open
  name_files denied denied
  name_files below 'denied\\below'
  name_files entered entered
} >"$work/denied.reg"
run_windows regedit /S "Z:$work/denied.reg"
chmod 000 "$drive/Corvalt/denied"
chmod 111 "$drive/Corvalt/entered"

ok "one folder may not be entered" denies denied
ok "the other may not be listed" denies entered
corvaltc scan --sections 22 --json "Z:$work/found.json" --quiet
ok "a scan goes over both" answered 1
ok "missing files of an open folder are reported" test "$(reported open)" == 9
ok "nothing in a folder that may not be entered is" test "$(reported denied)" == 0
ok "nor what lies deeper" test "$(reported below)" == 0
ok "files that are there in a folder that may not be listed are not" test "$(reported entered)" == 0

echo "$passed passed, $failed failed"
((failed == 0))
