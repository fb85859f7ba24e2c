#!/usr/bin/env bash
# How the program starts and ends: a scan that is cancelled, a window that is closed during a scan, another language,
# portable mode, missing files, two copies at once. Pictures of each step are left in build/wine-windowstarts/. Ends
# with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowstarts
source tests/support/windowchecks.sh

user_walk='Scanning Files and Folders - HKEY_CURRENT_USER...'

row_count() {
  reader outline results | cut -f 2
}

problems_come() {
  (($(row_count) > 3))
}

# Some of the scan's problems are listed, and none of the later sections, which hold as many again.
scan_is_partly_listed() {
  local rows
  rows=$(row_count)
  reader rows results "$rows" "$rows" | tee "$work/last-row"
  ((rows > 1)) && grep -q 'outline item.1' "$work/last-row" && ! grep -q MenuOrder "$work/last-row"
}

# The positions of the dialog's two progress bars.
bars() {
  reader controls 'Scanning ...' | awk -F '\t' '$2 == "msctls_progress32" { print $9 }'
}

# A section's own bar is full for a moment at its end.
bars_are_between() {
  bars | tee "$work/bars"
  [[ $(wc -l <"$work/bars") == 2 ]] &&
    awk '$1 <= 0 || $1 > 100 { out = 1 } $1 < 100 { between = 1 } END { exit out || !between }' "$work/bars"
}

tasks_are_off() {
  reader controls "$title" | awk -F '\t' '$3 >= 1001 && $3 <= 1004 { print $4 }' | sort | uniq -c | grep -x ' *4 disabled'
}

start_scan() {
  press "$title" 'Scan registry for problems'
  reader saying 'Scanning ...' "$user_walk"
}

scan_to_the_end() {
  press "$title" 'Scan registry for problems'
  reader saying 'Scanning ...' 'The scan is complete.'
}

# A copy of the program's folder, to be changed.
own_copy() {
  rm -rf "$drive/Corvalt Program"
  cp -a build/windows-x64/Corvalt "$drive/Corvalt Program"
  folder="$drive/Corvalt Program"
}

sections_are_stored() {
  query "$suite\\Corvalt\\Sections" | grep -c 'REG_DWORD *0x1$' | grep -qx 22
}

says() {
  reader controls "$1" | cut -f 9 | grep -xF -- "$2"
}

shows_a_window() {
  reader windows | cut -f 3 | grep -x TfrmRegMain
}

start_window_tests
drive=$WINEPREFIX/drive_c

# A scan of some seconds
run_windows build/windows-x64/tests/wine_rawregistry.exe fill 60000

# Cancel
ok "the window starts" start_window
ok "a scan is in the middle" start_scan
ok "its problems are listed as they come" eventually problems_come
glance in-the-middle
press 'Scanning ...' Cancel
ok "Cancel closes the dialog at once" reader gone 'Scanning ...'
ok "the scan ends" reader tool $scan_command enabled
ok "what was found is listed, and nothing of later sections" scan_is_partly_listed
ok "a repair of it is offered" reader tool $repair_command enabled
picture cancelled
press "$title" 'Scan registry for problems'
ok "the next scan starts anew" reader saying 'Scanning ...' 'Scanning Files'
ok "its bars are on their way" eventually bars_are_between
glance bars
ok "nothing else can be begun" tasks_are_off
reader toggle sections 6
ok "and no check changes" has_states sections HKEY_USERS checked
key Escape
ok "Escape cancels too" reader gone 'Scanning ...'
ok "the program goes on" reader tool $scan_command enabled

# Closing during a scan
ok "a scan is in the middle again" start_scan
key alt+F4
key alt+F4
ok "closing the dialog and the window ends the program with 0" ended
ok "the sections are stored" sections_are_stored
ok "the backup settings are stored" has_value "$suite\\Corvalt\\Settings" regbackupcount 0x1e
run_windows reg delete "$suite\\Corvalt" /f >/dev/null
ok "the window starts" start_window
ok "a scan is in the middle" start_scan
reader close
ok "the task list's request ends the program with 0" ended
ok "the sections are stored" sections_are_stored
ok "the backup settings are stored" has_value "$suite\\Corvalt\\Settings" regbackupcount 0x1e
run_windows reg delete 'HKCU\Software\Corvalt Kill' /f >/dev/null
run_windows reg delete 'HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\MenuOrder' /f >/dev/null
fill_prefix

# Language
own_copy
cat >"$folder/languages/deutsch.lng" <<'END'
11001=Corvalt Registrierungsreiniger
10022=Aufgaben
11004=Registrierung durchsuchen
11035=Suche
11031=Die Suche ist fertig.
11032=Reparieren
10014=Schließen
11018=(Probleme: %s)
11020=Ort:
11013=%s Probleme gefunden
END
run_windows reg add "$suite" /v Language /d deutsch.lng /f >/dev/null
german='Corvalt Registrierungsreiniger'
ok "the program starts in another language" start_window "$german"
ok "its texts are that language's" says "$german" 'Registrierung durchsuchen'
ok "English fills what it leaves out" says "$german" 'Restore previous repairs'
press "$german" 'Registrierung durchsuchen'
ok "a scan speaks it" reader saying 'Suche ...' 'Die Suche ist fertig.'
picture german
press 'Suche ...' Schließen
ok "so do the rows" has_row results '(Probleme: 2)'
ok "and their lines" has_row results 'Ort: HKEY_CURRENT_USER\Software'
ok "the program ends" close_window "$german"
run_windows reg add "$suite" /v Language /d missing.lng /f >/dev/null
ok "a language that is not there is English" start_window
ok "and the setting says so" has_value "$suite" Language english.lng
ok "the program ends" close_window

# Portable mode
printf '[Portable]\r\nType=1\r\nDataPath=C:\\Stick\r\n' >"$folder/settings.ini"
dump "$work/before"
ok "the program starts with its settings beside it" start_window
ok "it scans" scan_to_the_end
key Tab space
ok "and repairs" reader saying 'Repairing ...' 'The repair is complete.'
key Escape
ok "the dialog closes" reader gone 'Repairing ...'
ok "the backup's index is on the stick" test -s "$drive/Stick/TessalySoft/Tessaly Utilities/Backups/index.ini"
press "$title" 'Restore previous repairs'
ok "the restore dialog opens" reader wait Restore
picture portable
key Return
ok "it asks" reader wait Confirmation
key alt+y
ok "it restores" reader wait Information
key Return
ok "the message closes" reader gone Information
key Escape
ok "the dialog too" reader gone Restore
dump "$work/after"
ok "everything is back, byte for byte" same_registry "$work/before" "$work/after"
ok "the program ends" close_window
rm "$folder/settings.ini"
ok "without the file it starts" start_window
press "$title" 'Restore previous repairs'
ok "and looks for backups in the user's folder again" reader wait Restore
ok "where there are none" test -z "$(reader list Restore)"
key Escape
ok "the dialog closes" reader gone Restore
ok "the program ends" close_window

# Missing files
rm -r "$folder/data"
ok "without its data the program starts" start_window
press "$title" 'Scan registry for problems'
ok "a scan says what is missing" reader saying Error 'The scan ended early because of an error.'
picture no-data
key Return
ok "the message closes" reader gone Error
key Escape
ok "the dialog too" reader gone 'Scanning ...'
ok "what was found before is listed" has_row results 'HKEY_USERS - Files and Folders'
ok "the program goes on" reader tool $scan_command enabled
ok "and ends" close_window
rm -r "$folder/languages"
run_windows "$folder/corvalt.exe" >"$work/program" 2>&1 </dev/null &
program=$!
ok "without languages it starts too" eventually shows_a_window
picture no-languages
reader close
ok "and ends" ended

echo "$passed passed, $failed failed"
exit $((failed > 0))
