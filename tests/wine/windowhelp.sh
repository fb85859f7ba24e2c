#!/usr/bin/env bash
# The help: F1 anywhere in the window and the menu open the manual, which is built beside the program; without the file
# the program goes on. Wine shows the manual's window and contents, but has nothing to draw its pages with. Pictures
# are left in build/wine-windowhelp/. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowhelp
source tests/support/windowchecks.sh

help_title='Corvalt Help'

help_shows_contents() {
  reader controls "$help_title" | awk -F '\t' '{ print $2, $9 }' | tee "$work/controls"
  grep -q SysTreeView32 "$work/controls" && grep -q SysTabControl32 "$work/controls"
}

# opens_help NAME: the window comes and shows the contents, and goes again.
opens_help() {
  ok "$1 opens the help" reader wait "$help_title"
  ok "it shows the manual's contents" eventually help_shows_contents
  picture "${1// /-}"
  key alt+F4
  ok "the help closes" reader gone "$help_title"
}

no_help_window() {
  reader windows | tee "$work/windows"
  grep -q "$title" "$work/windows" && ! grep -q "$help_title" "$work/windows"
}

start_window_tests

ok "the window starts" start_window
click_row sections 'Registry Integrity'
ok "the sections have the keyboard" eventually has_focus sections
key F1
opens_help "F1 in the sections"
ok "the sections have the keyboard again" eventually has_focus sections
key Tab F1
opens_help "F1 in the next control"
choose 3 1
opens_help "Help Contents"
ok "closing ends the program with 0" close_window

# A copy of the program's folder without the file
cp -a "$folder" "$WINEPREFIX/drive_c/Corvalt Program"
folder="$WINEPREFIX/drive_c/Corvalt Program"
rm "$folder/help.chm"
ok "the window starts without the help" start_window
click_row sections 'Registry Integrity'
eventually has_focus sections
key F1
# What follows the key in the window's queue comes after it.
click_box sections 'HKEY_USERS'
ok "the window goes on" eventually lacks_state sections HKEY_USERS checked
ok "and there is no help" no_help_window
ok "the program ends with 0" close_window

echo "$passed passed, $failed failed"
exit $((failed > 0))
