#!/usr/bin/env bash
# A machine on which nothing is broken (tests/healthy/): what the scan still reports; that everything works as before after
# all of it was repaired; and that a restore brings all of it back. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/wine.sh
trap stop_wine EXIT

work=$PWD/build/wine-healthy
rm -rf "$work"
mkdir -p "$work"
source tests/support/winechecks.sh
source tests/support/installation.sh

# Fills the prefix and keeps a copy of it.
become_healthy() {
  run_windows regedit /E "Z:$work/existing.reg"
  python3 tests/healthy/intoprefix.py registry tests/healthy/healthy.reg "$work/existing.reg" "$work/healthy.reg"
  run_windows regedit /S "Z:$work/healthy.reg"
  python3 tests/healthy/intoprefix.py files tests/healthy/healthyfiles.txt "$WINEPREFIX/drive_c"
  "$wine_server" -k
  "$wine_server" -w
  cp -a "$WINEPREFIX" "$work/prefix"
}

# Starts a fresh copy of the healthy prefix.
fresh_copy() {
  "$wine_server" -k 2>/dev/null || true
  "$wine_server" -w
  rm -rf "$WINEPREFIX"
  cp -a "$work/prefix" "$WINEPREFIX"
  start_wine "$WINEPREFIX"
}

# told COMMAND...: its output and its exit code.
told() {
  local answer=0
  "$@" 2>/dev/null </dev/null | tr -d '\r' || answer=$?
  echo "$1: $answer"
}

# shows_window TITLE PROGRAM [ARGUMENT...]: whether a window with this title comes up.
shows_window() {
  local title=$1
  shift
  taskset -c "$wine_core" "$wine_program" "$@" >/dev/null 2>&1 </dev/null &
  local program=$! tries=0 answer="no window"
  until ((++tries > 300)); do
    if xdotool search --name "$title" >/dev/null 2>&1; then
      answer="a window"
      break
    fi
    sleep 0.1
  done
  kill "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  run_windows taskkill /F /IM "$1.exe" >/dev/null 2>&1 || true
  echo "$1: $answer"
}

# Installs and uninstalls a program: what is there in between and afterwards.
installs() {
  local folder="$WINEPREFIX/drive_c/Program Files/Tessaly Utilities"
  told run_windows "$setup" /S
  (cd "$folder" && find . -type f | sort)
  told run_windows reg query "$apps" /v DisplayVersion
  told uninstall
  ls "$folder" 2>/dev/null || echo "all is gone"
  told run_windows reg query "$apps"
}

# works FILE: what the programs of Windows, an installer and components do, written down.
works() {
  {
    shows_window "Registry Editor" regedit
    shows_window "Notepad" notepad
    shows_window "Wine configuration" winecfg
    # How to use it stands in a message box of this title.
    shows_window '^Error$' msiexec '/?'
    told run_windows reg query 'HKLM\Software\Microsoft\Windows NT\CurrentVersion' /v CurrentVersion
    told run_windows reg query 'HKCR\txtfile' /s
    installs
    told run_windows build/windows-x64/tests/wine_components.exe
  } >"$1"
}

repair_all() {
  corvaltc repair --yes --json "Z:$work/repaired.json"
  [[ $code == 0 || $code == 1 ]] && (($(result count "$work/repaired.json") > 0))
}

restore_all() {
  local name
  corvaltc backups
  for name in $(cut -f 1 "$work/out"); do
    corvaltc restore "$name"
    answered 0 || return 1
  done
}

start_display
start_fresh_wine "$PWD/build/wine"
setup=$(echo "$PWD"/build/package/Corvalt-*-setup-native64.exe)

# The class of all files is empty in a prefix, which would be found there and nowhere else.
run_windows reg add 'HKCR\*\OpenWithList\notepad.exe' /ve /f >/dev/null
corvaltc scan --json "Z:$work/fresh.json" --quiet
become_healthy
fresh_copy
corvaltc scan --json "Z:$work/found.json" --quiet
ok "only what can't be shielded is reported, beside what the prefix itself has" \
  result expected "$work/fresh.json" "$work/found.json" tests/healthy/stillreported.expected $folder/languages/english.lng

works "$work/before.txt"
ok "the four windows come up" test "$(grep -c ': a window$' "$work/before.txt")" == 4
ok "the installer installs and uninstalls" grep -qx "all is gone" "$work/before.txt"
ok "eleven classes and a program identifier give objects" test "$(grep -c ': 00000000$' "$work/before.txt")" == 12

fresh_copy
ok "everything that is found is repaired" repair_all
works "$work/after.txt"
ok "everything works as before" diff "$work/before.txt" "$work/after.txt"

fresh_copy
corvaltc scan --sections 16 --quiet
dump "$work/before"
ok "everything is repaired once more" repair_all
dump "$work/repaired"
ok "something is gone" test "$(comm -23 "$work/before" "$work/repaired" | wc -l)" -gt 20
ok "every backup is restored" restore_all
dump "$work/restored"
ok "every key and value is back, byte for byte" same_registry "$work/before" "$work/restored"

echo "$passed passed, $failed failed"
((failed == 0))
