#!/usr/bin/env bash
# The main window, driven from outside with mouse and keyboard, and read back from the registry and the disk: first
# start, scan, repair, restore, exit. Pictures of each step are left in build/wine-window/. Ends with
# "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/wine.sh
trap stop_wine EXIT

work=$PWD/build/wine-window
rm -rf "$work"
mkdir -p "$work"
source tests/support/winechecks.sh

settings='HKCU\Software\TessalySoft\Tessaly Utilities'
title='Corvalt Registry Cleaner'

picture() {
  import -window root "$work/$1.png"
}

# Waits until a window of this title is on the screen; sets window.
window_of() {
  local tries
  for ((tries = 0; tries < 300; ++tries)); do
    window=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1 || true)
    if [[ -n $window ]]; then
      return
    fi
    sleep 0.1
  done
  return 1
}

no_window_of() {
  local tries
  for ((tries = 0; tries < 300; ++tries)); do
    if ! xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; then
      return
    fi
    sleep 0.1
  done
  return 1
}

# Waits until the screen has not changed for a while: whatever was running has ended.
screen_is_still() {
  local before= after still=0 tries
  for ((tries = 0; tries < 200; ++tries)); do
    after=$(import -window root rgb:- | cksum)
    if [[ $after == "$before" ]]; then
      if ((++still >= 4)); then
        return
      fi
    else
      still=0
    fi
    before=$after
    sleep 0.5
  done
  return 1
}

# click_at LEFT TOP: in the main window.
click_at() {
  window_of "^$title\$"
  xdotool mousemove --window "$window" "$1" "$2" click 1
}

# The links of the navigation pane, from the window's top left corner at 96 dots per inch.
click_scan() { click_at 110 132; }
click_restore() { click_at 110 180; }

query() {
  run_windows reg query "$@" 2>/dev/null | tr -d '\r'
}

has_value() {
  query "$1" /v "$2" | grep -qF -- "$3"
}

lacks_value() {
  ! query "$1" /v "$2" >/dev/null
}

start_window() {
  run_windows "$folder/corvalt.exe" >"$work/out" 2>&1 </dev/null &
  program=$!
  window_of "^$title\$"
  screen_is_still
}

close_window() {
  window_of "^$title\$"
  xdotool windowfocus "$window" key --window "$window" alt+F4
  wait "$program"
}

# backups N: so many are listed.
backups() {
  corvaltc backups
  [[ $(wc -l <"$work/out") == "$1" ]]
}

all_sections_stored() {
  query "$settings\\Corvalt\\Sections" >"$work/sections"
  [[ $(grep -c 'REG_DWORD *0x1$' "$work/sections") == 22 ]] && ! grep -qE '^ +(0|2) ' "$work/sections"
}

start_display
start_fresh_wine "$PWD/build/wine"
# Without a window manager the windows draw their own title bars.
run_windows reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
run_windows reg add 'HKCU\Software\Vendor' /v Exe /d 'C:\Gone\app.exe' /f >/dev/null
run_windows reg add 'HKCU\Software\Vendor Gone' /f >/dev/null
shared='HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs'
run_windows reg add "$shared" /v 'C:\Gone\one.dll' /t REG_DWORD /d 1 /f >/dev/null

ok "the window starts" start_window
picture start

click_scan
ok "the scan shows its dialog" window_of '^Scanning'
ok "the scan ends" screen_is_still
picture scanned

# The Repair button has the keyboard.
xdotool key space
ok "the repair follows in a dialog of its own" window_of '^Repairing'
ok "the repair ends" screen_is_still
picture repaired
xdotool key Escape
ok "both dialogs close" no_window_of '^Repairing'
ok "the value is gone" lacks_value 'HKCU\Software\Vendor' Exe
ok "the shared file's count is gone" lacks_value "$shared" 'C:\Gone\one.dll'
ok "the backup is listed" backups 1

click_restore
ok "the restore dialog opens" window_of '^Restore$'
ok "the restore dialog shows its list" screen_is_still
picture restore
# The newest backup is selected and Restore is the default button; then the question and the report.
xdotool key Return
ok "the restore asks first" screen_is_still
picture question
xdotool key alt+y
ok "the restore reports" screen_is_still
picture restored
xdotool key Return
ok "the report closes" screen_is_still
xdotool key Escape
ok "the restore dialog closes" no_window_of '^Restore$'
ok "the value is back" has_value 'HKCU\Software\Vendor' Exe 'C:\Gone\app.exe'
ok "the shared file's count is back" has_value "$shared" 'C:\Gone\one.dll' 0x1

ok "the window closes" close_window
ok "every section is stored as ticked, and no group" all_sections_stored
ok "the backup settings are stored" has_value "$settings\\Corvalt\\Settings" regbackupcount 0x1e

echo "$passed passed, $failed failed"
exit $((failed > 0))
