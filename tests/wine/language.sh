#!/usr/bin/env bash
# language.sh LANGUAGE: every window in a language of languages/, or in "long", whose texts are 40 % longer and wider
# than the English ones, on displays of two scales: no caption is cut off. Pictures of each window, to be looked at, are
# left in build/wine-language-LANGUAGE/. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
language=${1:?"a language of languages/, or \"long\""}
source tools/wine.sh
trap stop_wine EXIT

work=$PWD/build/wine-language-$language
rm -rf "$work"
mkdir -p "$work"
source tests/support/winechecks.sh

answer_no=7
settings='HKCU\Software\TessalySoft\Tessaly Utilities'

windows() {
  run_windows build/windows-x64/tests/wine_clipping.exe "$@"
}

picture() {
  import -window root "$work/$scale-$1.png"
}

# Waits until the screen has not changed for a while: whatever was running has ended. A caret that blinks never rests.
screen_is_still() {
  local before= after still=0 tries
  for ((tries = 0; tries < 20; ++tries)); do
    after=$(import -window root rgb:- | cksum)
    if [[ $after == "$before" ]]; then
      if ((++still >= 3)); then
        return
      fi
    else
      still=0
    fi
    before=$after
    sleep 0.4
  done
}

# whole NAME CLASS: the window comes, comes to rest, and cuts nothing off.
whole() {
  windows "$2" >/dev/null || true
  screen_is_still
  picture "$1"
  ok "$scale dots per inch: $1" windows "$2"
}

# The built program with the language's file as it is in the sources.
copy_program() {
  cp -a "$folder" "$work/Corvalt"
  local file=$work/Corvalt/languages/$language.lng
  if [[ $language == long ]]; then
    python3 tests/support/longlanguage.py languages/english.lng "$file"
  else
    cp "languages/$language.lng" "$file"
  fi
}

prepare_prefix() {
  # Without a window manager the windows draw their own title bars.
  run_windows reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
  local key
  for key in 'HKCU\Control Panel\Desktop' 'HKCU\Software\Wine\Fonts'; do
    run_windows reg add "$key" /v LogPixels /t REG_DWORD /d "$scale" /f
  done
  run_windows reg add "$settings" /v Language /d "$language.lng" /f
  run_windows reg add "$settings\\Corvalt\\IgnoreList" /v 'HKEY_CURRENT_USER\Software\Ignored\' /t REG_DWORD /d 1 /f
  local value
  for value in one two; do
    run_windows reg add 'HKCU\Software\Vendor' /v "$value" /d "C:\\Gone\\$value.exe" /f
  done
}

look_at_every_window() {
  run_windows "$work/Corvalt/corvalt.exe" >"$work/out" 2>&1 </dev/null &
  local program=$!
  whole start TfrmRegMain
  windows TfrmRegMain 1001
  whole scanned TfrmScan
  windows TfrmScan 2
  screen_is_still
  # The first problem, below its section's header.
  windows TfrmRegMain TessalyTree 200 $((70 * scale / 96))
  whole selected TfrmRegMain
  windows TfrmRegMain 1002
  whole repaired TfrmScan
  windows TfrmScan 2
  screen_is_still
  windows TfrmRegMain 1003
  whole restore TfrmRestore
  windows TfrmRestore 104
  whole viewer Tfrmbackupview
  windows Tfrmbackupview 2
  screen_is_still
  windows TfrmRestore 102
  whole question '#32770'
  windows '#32770' "$answer_no"
  screen_is_still
  windows TfrmRestore 2
  screen_is_still
  windows TfrmRegMain 1004
  whole ignored Tfrmignorereg
  windows Tfrmignorereg 2
  screen_is_still
  windows TfrmRegMain 1007
  wait "$program"
}

start_display
copy_program
for scale in 96 144; do
  start_fresh_wine "$PWD/build/wine"
  prepare_prefix >/dev/null
  # Programs take the scale that the session began with.
  "$wine_server" -k
  "$wine_server" -w
  start_wine "$WINEPREFIX"
  look_at_every_window
done

echo "$passed passed, $failed failed"
exit $((failed > 0))
