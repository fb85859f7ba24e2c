#!/usr/bin/env bash
# The main window's story, driven from outside with mouse and keyboard, and read back from the window, the registry and
# the disk: first start, checks kept over a restart, scan, repair, backup, restore, exit. Pictures of each step are left
# in build/wine-window/. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-window
source tests/support/windowchecks.sh

all_checked() {
  (($(reader rows sections | awk -F '\t' '$4 ~ /^checked/' | wc -l) == $(section_count) + 2))
}

# stored COUNT STATE: so many leaves of the Sections tree are stored with 1 (true) or 0, and never a group.
stored() {
  query "$suite\\Corvalt\\Sections" | tee "$work/sections"
  [[ $(grep -c "REG_DWORD *0x$2\$" "$work/sections") == "$1" ]] && ! grep -qE '^ +(0|2) ' "$work/sections"
}

no_settings() {
  ! query "$suite"
}

checks_are_as_left() {
  has_states sections HKEY_USERS selectable && lacks_state sections HKEY_USERS checked &&
    has_states sections 'Files and Folders' mixed && has_states sections 'My Computer' mixed &&
    lacks_state sections 'Start Menu' checked && has_states sections 'Registry Integrity' checked
}

# backups N: so many are listed.
backups() {
  corvaltc backups
  [[ $(wc -l <"$work/out") == "$1" ]]
}

# How many rows the dialog's list has.
listed() {
  [[ $(reader list Restore | wc -l) == "$1" ]]
}

# The backup and the log beside it.
backup_files() {
  find "$WINEPREFIX/drive_c/users" -path '*/Backups/*' -name '[0-9]*'
}

# Line by line, as the reader prints a text of several lines.
viewer_shows_the_file() {
  reader controls 'Registry repair' | awk -F '\t' '$2 == "TessalyTextView" { print $9 }' >"$work/viewed"
  sed 's/\r$/ | /' "$(backup_files | grep -v '\.log$')" | tr -d '\n' >"$work/file"
  echo >>"$work/file"
  head -c 300 "$work/viewed"
  grep -q '^REGEDIT4.*Vendor' "$work/viewed" && cmp "$work/viewed" "$work/file"
}

something_is_gone() {
  dump "$work/repaired-dump"
  comm -23 "$work/before" "$work/repaired-dump" >"$work/gone"
  [[ $(wc -l <"$work/gone") -gt 80 ]]
}

all_is_back() {
  dump "$work/after"
  same_registry "$work/before" "$work/after"
}

start_window_tests

# First start
ok "the suite has no settings yet" no_settings
ok "the window starts" start_window
picture start
ok "every section is checked" all_checked
ok "closing ends the program with 0" close_window
ok "every section is stored as checked, and no group" stored "$(section_count)" 1
ok "the backup settings are stored" has_value "$suite\\Corvalt\\Settings" regbackupcount 0x1e

# Section checks over a restart
ok "the window starts again" start_window
click_box sections HKEY_USERS
click_box sections 'Start Menu'
ok "unchecked sections make their groups mixed" eventually checks_are_as_left
picture unchecked
ok "the program ends" close_window
ok "two sections are stored as unchecked" stored 2 0
ok "the others as checked" stored $(($(section_count) - 2)) 1
ok "the window starts a third time" start_window
ok "the checks are as they were left" checks_are_as_left
picture kept
# A click on a group that is mixed checks all of it.
click_box sections 'My Computer'
ok "a mixed group becomes checked with all its sections" eventually all_checked

# Scan and repair
fill_prefix
run_windows reg add 'HKCU\Software\Vendor' /v Exe /d 'C:\Gone\app.exe' /f >/dev/null
shared='HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs'
run_windows reg add "$shared" /v 'C:\Gone\one.dll' /t REG_DWORD /d 1 /f >/dev/null
dump "$work/before"
press "$title" 'Scan registry for problems'
ok "the scan shows its dialog" reader wait 'Scanning ...'
glance scanning
ok "the scan ends" reader saying 'Scanning ...' 'The scan is complete.'
ok "the dialog offers the repair" reader saying 'Scanning ...' Repair
picture scanned
ok "the value is found" has_row results 'C:\Gone\app.exe'
ok "the program's own settings, which name a folder to come, are no problem" lacks_row results TessalySoft
found=$(reader status | head -n 1)
# The button that cancelled has the keyboard: nobody begins a repair by mistake.
key Tab space
ok "the repair follows in a dialog of its own" reader saying 'Repairing ...' 'The repair is complete.'
picture repaired
key Escape
ok "both dialogs close" reader gone 'Repairing ...'
ok "also the first" reader gone 'Scanning ...'
picture after-repair
echo "$found; left: $(reader status | head -n 1)"
ok "the value is gone" lacks_value 'HKCU\Software\Vendor' Exe
ok "the shared file's count is gone" lacks_value "$shared" 'C:\Gone\one.dll'
ok "more than 80 lines of the registry are gone" something_is_gone
ok "the backup is listed" backups 1

# Restore
press "$title" 'Restore previous repairs'
ok "the restore dialog opens" reader wait Restore
ok "it lists the backup" listed 1
picture restore
press Restore View
ok "the viewer opens" reader wait 'Registry repair'
picture viewer
ok "it shows the backup's file" viewer_shows_the_file
key Escape
ok "the viewer closes" reader gone 'Registry repair'
press Restore Restore
ok "the restore asks first" reader wait Confirmation
picture question
key alt+n
ok "the question closes" reader gone Confirmation
ok "No restores nothing" lacks_value 'HKCU\Software\Vendor' Exe
# It is the default button.
click_list_row Restore 1
key Return
ok "it asks again" reader wait Confirmation
key alt+y
ok "the restore reports" reader wait Information
picture restored
key Return
ok "the report closes" reader gone Information
ok "every key and value is back, byte for byte" all_is_back
ok "the backup is still listed" listed 1
press Restore Remove
ok "Remove takes the row away" eventually listed 0
picture removed
ok "and the backup from the disk" backups 0
ok "its file and its log have gone" test -z "$(backup_files)"
key Escape
ok "the restore dialog closes" reader gone Restore

ok "the window closes" close_window

echo "$passed passed, $failed failed"
exit $((failed > 0))
