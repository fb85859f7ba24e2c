#!/usr/bin/env bash
# The jump from a problem to the registry editor: it lands on the key and the value. Pictures are left in
# build/wine-windowjump/. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowjump
source tests/support/windowchecks.sh

editor='Registry Editor'

# The editor's status bar names the key.
editor_is_at() {
  reader controls "$editor" | awk -F '\t' '$2 == "msctls_statusbar32" { print $9 }' | tee "$work/key"
  [[ $(tr '[:lower:]' '[:upper:]' <"$work/key") == *"$(tr '[:lower:]' '[:upper:]' <<<"$1")" ]]
}

# The selected value in the editor's list, "-" for none.
editor_selects() {
  reader list "$editor" | awk -F '\t' '$2 ~ /selected/ { print $7 }' | tee "$work/value"
  [[ $(<"$work/value") == "$1" ]]
}

# Of the row that is under the pointer.
open_context_menu() {
  xdotool click 3
  eventually menu_is_open
}

menu_is_open() {
  reader windows | awk -F '\t' '$3 == "#32768"' | grep .
}

start_window_tests
vendor='HKCU\Software\Zebra Works\Quagga'
for name in Alpha Kestrel Path; do
  run_windows reg add "$vendor" /v $name /d nothing /f >/dev/null
done
run_windows reg add "$vendor" /v Kestrel /d 'C:\Gone\app.exe' /f >/dev/null
run_windows reg add 'HKCU\Software\Yonder' /ve /d 'C:\Gone\default.exe' /f >/dev/null
run_windows reg add 'HKCU\Software\Xenon' /f >/dev/null
# The tool stores an empty default value in a new key.
run_windows reg delete 'HKCU\Software\Xenon' /ve /f >/dev/null

value='C:\Gone\app.exe'
default='C:\Gone\default.exe'
empty='HKEY_CURRENT_USER\software\Xenon'
ok "the window starts" start_window
ok "it scans" scan_through
for row in "$value" "$default" "$empty"; do
  ok "$row is found" has_row results "$row"
done

click_row results "$value"
ok "a value is selected" eventually has_states results "$value" selected
press "$title" 'Open in Regedit'
ok "the editor starts" reader saying "$editor" ""
ok "the jump ends" reader tool $scan_command enabled
ok "it is at the value's key" eventually editor_is_at 'HKEY_CURRENT_USER\Software\Zebra Works\Quagga'
ok "and selects the value" eventually editor_selects Kestrel
picture value

# The editor stays, aside.
move_window "$editor" 0 810
ok "it can be moved aside" eventually window_is_at "$editor" 0 810
click_row results "$empty"
ok "an empty key is selected" eventually has_states results "$empty" selected
open_context_menu
picture menu
key Down Return
ok "the context menu's first entry jumps too" eventually editor_is_at 'HKEY_CURRENT_USER\Software\Xenon'
ok "the jump ends" reader tool $scan_command enabled
picture key

key_of_default='HKEY_CURRENT_USER\Software\Yonder'
ok "a default value is selected" reader select results "$(row_field results "$default" 1)"
press "$title" 'Open in Regedit'
ok "its key is shown" eventually editor_is_at "$key_of_default"
ok "and (Default) is selected" eventually editor_selects '(Default)'
ok "the jump ends" reader tool $scan_command enabled
picture default

reader close
ok "the program ends while the editor stays" ended

echo "$passed passed, $failed failed"
exit $((failed > 0))
