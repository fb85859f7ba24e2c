#!/usr/bin/env bash
# Looking through the results and deciding: scrolling, opening and closing, the keyboard, checks of one row, a section
# and all, the ignore list and its manager, the report. Pictures of each step are left in build/wine-windowresults/.
# Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowresults
source tests/support/windowchecks.sh

ignored="$suite\\Corvalt\\IgnoreList"
obsolete='Obsolete software'
empty_key='HKEY_CURRENT_USER\software\Corvalt Empty'
sounds='Sounds and Appevents'
sound='HKEY_CURRENT_USER\AppEvents'

# status_says FOUND SELECTED: in the two parts of the status bar; blanks around them don't count.
status_says() {
  reader status | tee "$work/status" | sed 's/^[[:space:]\xc2\xa0]*//' >"$work/status-trimmed"
  cat "$work/status"
  [[ $(sed -n 1p "$work/status-trimmed") == "$1" && $(sed -n 2p "$work/status") == *"$2" ]]
}

selected_row() {
  reader rows results | awk -F '\t' '$4 ~ /selected/ { print $9 }'
}

selected_is() {
  selected_row | tee "$work/selected"
  [[ $(<"$work/selected") == "$1"* ]]
}

row_is_at() {
  [[ $(row_field results "$1" "$2") == "$3" ]]
}

height_is() {
  [[ $(row_field results "$1" 8) == "$2" ]]
}

children_of() {
  reader rows results | wanted=$1 awk -F '\t' '$3 == 0 { inside = index($9, ENVIRON["wanted"]) > 0; next } inside'
}

all_children() {
  children_of "$1" | cut -f 4 >"$work/states"
  [[ -s $work/states ]] && case $2 in
    checked) ! grep -vqw checked "$work/states" ;;
    unchecked) ! grep -qw checked "$work/states" ;;
  esac
}

chosen_is() {
  reader chooser | tee "$work/choices"
  grep -qx "\\*$1" "$work/choices"
}

# Each header in turn from the top, with the keyboard alone: closed, and its box toggled.
toggle_each_header() {
  local count i
  local -a keys=(Home)
  count=$(reader rows results | awk -F '\t' '$3 == 0' | wc -l)
  for ((i = 0; i < count; ++i)); do keys+=(Left space Down); done
  key "${keys[@]}"
}

# The only backup holds no key.
one_small_backup() {
  local file
  cat "$work/out"
  file=$(find "$WINEPREFIX/drive_c/users" -name "$(cut -f 1 "$work/out")")
  [[ $(wc -l <"$work/out") == 1 && -s $file ]] && ! grep -aq '^\[' "$file"
}

# A click on the tree below its header: some row is selected.
focus_results() {
  click $((tree[4] + 200)) $((tree[5] + 100))
  eventually has_focus results
}

is_stored() {
  has_value "$ignored" "$1" 0x1
}

# managed ENTRY STATES: how the manager shows it.
managed() {
  reader list 'Ignore List Manager' | wanted=$1 awk -F '\t' '$7 == ENVIRON["wanted"]' | tee "$work/entry"
  [[ $(cut -f 2 "$work/entry") == "$2" ]]
}

click_entry() {
  local -a fields
  IFS=$'\t' read -ra fields < <(reader list 'Ignore List Manager' | wanted=$1 awk -F '\t' '$7 == ENVIRON["wanted"]')
  click $((fields[2] + $2)) $((fields[3] + fields[5] / 2))
}

open_manager() {
  press "$title" 'Ignore List Manager'
  reader wait 'Ignore List Manager'
}

# export_as NAME: through the menu and the system's dialog.
export_as() {
  choose 1 1
  reader wait 'Save As' >"$work/dialog" && xdotool type "$1" && picture "${2:-last}" && key Return
}

# thumb PICTURE: a checksum of the results tree's vertical scroll bar in a picture that is taken now. The mouse is moved
# away from the rows, whose tips would lie over it.
thumb() {
  xdotool mousemove $((tree[4] + 200)) $((tree[5] - 20))
  picture "$1"
  convert "$work/$1.png" -crop "18x$((tree[7] - 60))+$((tree[4] + tree[6] - 18))+$((tree[5] + 30))" +repage rgb:- | cksum
}

# wheel TURNS BUTTON: over the rows; 4 is up, 5 is down.
wheel() {
  xdotool mousemove $((tree[4] + 200)) $((tree[5] + 200)) click --repeat "$1" --delay 20 "$2"
}

start_window_tests
fill_prefix
count=$(problem_count)
ok "the window starts" start_window
ok "the scan finds as many problems as the console's" scan_through
ok "and says so" status_says "$count problems found" "$count selected"
picture results

# Scrolling
IFS=$'\t' read -ra tree < <(reader controls "$title" | awk -F '\t' '$3 == 2002')
top=$(thumb top)
wheel 4 5
ok "the wheel scrolls down" eventually has_states results 'Registry Integrity' offscreen
ok "and the scroll bar's thumb goes with the rows" test "$(thumb scrolled)" != "$top"
wheel 5 4
ok "and up" eventually row_is_at 'Registry Integrity' 6 $((tree[5] + 20))
ok "and the thumb is where it was" test "$(thumb scrolled-back)" = "$top"
click $((tree[4] + tree[6] - 26)) $((tree[5] + tree[7] - 8))
ok "the lower scroll bar shows more of long rows" eventually row_is_at 'Registry Integrity' 5 $((tree[4] - 22))
picture scrolled-right
click $((tree[4] + 8)) $((tree[5] + tree[7] - 8))
ok "and goes back" eventually row_is_at 'Registry Integrity' 5 "${tree[4]}"

# Opening and closing
click_opener results 'Registry Integrity'
ok "a click on the button closes a section" eventually has_states results 'Registry Integrity' collapsed
ok "its problems have no rows then" test -z "$(children_of 'Registry Integrity')"
picture closed
IFS=$'\t' read -ra header < <(row results 'Registry Integrity')
xdotool mousemove $((header[4] + 150)) $((header[5] + 11)) click --repeat 2 --delay 30 1
ok "a double click opens it" eventually has_states results 'Registry Integrity' expanded
ok "and it is selected" has_states results 'Registry Integrity' selected

# Keyboard
key End
ok "End goes to the last row" eventually lacks_state results "$(reader rows results | tail -n 1 | cut -f 9)" offscreen
ok "which is selected then" has_states results "$(reader rows results | tail -n 1 | cut -f 9)" selected
picture end
key Home
ok "Home goes to the first" eventually has_states results 'Registry Integrity' selected
ok "and shows it" lacks_state results 'Registry Integrity' offscreen
key Down
ok "Down goes to the next row" eventually selected_is 'Location: HKEY_CURRENT_USER\Software\Microsoft'
key Left
ok "Left goes to the section" eventually selected_is 'Registry Integrity'
key Left
ok "and then closes it" eventually has_states results 'Registry Integrity' collapsed
key Right
ok "Right opens it" eventually has_states results 'Registry Integrity' expanded
key minus
ok "so does -" eventually has_states results 'Registry Integrity' collapsed
key plus
ok "and +" eventually has_states results 'Registry Integrity' expanded
key Next
ok "Page Down goes on by a page" eventually lacks_state results 'Registry Integrity' selected
ok "typing finds a row" type_ahead results Custom
ok "and shows it" lacks_state results 'Custom Controls' offscreen

# The selected problem
ok "a section is found by its name" type_ahead results Obsolete
click_row results "$empty_key"
ok "a selected problem has three lines" eventually height_is "$empty_key" 66
ok "the third one says what follows" has_row results "$empty_key | This key is empty. | Action: "
ok "its action is to be repaired" eventually chosen_is 'Repair this problem'
picture selected

# The controls on its third line, with the keyboard alone
key Tab
ok "Tab leaves the tree" eventually has_no_focus results
key Down
ok "for the chooser" eventually chosen_is 'Do not repair this problem'
ok "which unchecks the row" lacks_state results "$empty_key" checked
picture chooser-focused
key Up
ok "and checks it" eventually chosen_is 'Repair this problem'
key Tab
picture button-focused
key shift+Tab Down
ok "from the button Tab goes back to it" eventually chosen_is 'Do not repair this problem'
key Up shift+Tab
ok "and from there to the tree" eventually has_focus results
ok "all is as it was" chosen_is 'Repair this problem'
click_opener results "$obsolete"
ok "a section that closes over the selected problem is selected itself" eventually selected_is "$obsolete"
key Right
ok "it opens again" eventually has_states results "$obsolete" expanded
click_row results "$empty_key"
ok "and the problem is selected again" eventually has_states results "$empty_key" selected

# Checks
click_box results "$empty_key"
ok "a click on the box unchecks it" eventually lacks_state results "$empty_key" checked
ok "its section is mixed" has_states results "$obsolete" mixed
ok "the chooser follows" eventually chosen_is 'Do not repair this problem'
ok "the status bar counts" status_says "$count problems found" "$((count - 1)) selected"
picture unchecked
key space
ok "the space bar checks it again" eventually has_states results "$obsolete" checked
choose_action 2 choices
ok "so does the chooser's second entry" eventually has_states results "$obsolete" mixed
ok "the box follows" lacks_state results "$empty_key" checked
choose_action 1
ok "and its first" eventually has_states results "$obsolete" checked
click_box results "$obsolete"
ok "a section unchecks all its problems" eventually all_children "$obsolete" unchecked
picture section-unchecked
click_box results "$obsolete"
ok "and checks them" eventually all_children "$obsolete" checked
focus_results
toggle_each_header
ok "all sections are unchecked" eventually status_says "$count problems found" 'none selected'
picture all-unchecked
dump "$work/before"
press "$title" 'Repair your registry'
ok "a repair of nothing ends" reader saying 'Repairing ...' 'The repair is complete.'
press 'Repairing ...' Close
ok "its dialog closes" reader gone 'Repairing ...'
ok "every problem is still listed" status_says "$count problems found" 'none selected'
dump "$work/after"
ok "nothing was deleted" same_registry "$work/before" "$work/after"
corvaltc backups
ok "its backup is empty" one_small_backup
focus_results
toggle_each_header
ok "all sections are checked again" eventually status_says "$count problems found" "$count selected"

# Ignore list
key Home asterisk
ok "* opens the section" eventually has_states results 'Registry Integrity' expanded
ok "the section is selected" type_ahead results Obsolete
key Right
ok "it is open" eventually has_states results "$obsolete" expanded
key Down
ok "its first problem is selected" eventually selected_is "Location: $empty_key"
entry="$empty_key\\"
choose_action 3
ok "the ignore choice asks" reader wait Confirmation
picture ignore-question
key alt+n
ok "the question closes" reader gone Confirmation
ok "No leaves the row" has_row results "$empty_key"
ok "and its choice" chosen_is 'Repair this problem'
ok "and the list" lacks_value "$ignored" "$entry"
choose_action 3
ok "it asks again" reader wait Confirmation
key alt+y
ok "Yes takes the row out" eventually lacks_row results "$empty_key"
ok "and stores its entry" is_stored "$entry"
ok "the section's number stays" has_row results "$obsolete  (problems: 3)"
picture ignored
ok "a new scan" scan_through
ok "does not find it" status_says "$((count - 1)) problems found" "$((count - 1)) selected"
ok "it is not listed" lacks_row results "$empty_key"
focus_results
ok "a section with one problem is selected" type_ahead results Sounds
key Down
ok "its problem" eventually height_is "$sound" 66
choose_action 3
ok "asks" reader wait Confirmation
key alt+y
ok "the section goes with its last problem" eventually lacks_row results "$sounds"
picture section-ignored

# Manager
ok "the manager opens" open_manager
ok "the new entry is checked" managed "$entry" checked
picture manager
click_entry "$entry" 10
ok "a click switches it off" eventually managed "$entry" -
press 'Ignore List Manager' Cancel
ok "Cancel closes" reader gone 'Ignore List Manager'
ok "and changes nothing" is_stored "$entry"
ok "it opens again" open_manager
ok "the entry is on" managed "$entry" checked
click_entry "$entry" 10
ok "it is switched off" eventually managed "$entry" -
picture switched-off
rows=$(reader list 'Ignore List Manager' | wc -l)
other=$(reader list 'Ignore List Manager' | awk -F '\t' '$7 ~ /AppEvents/ { print $7 }')
click_entry "$other" 60
ok "another entry is selected" eventually managed "$other" checked,selected
press 'Ignore List Manager' Remove
ok "Remove takes it away" eventually test "$rows" -gt "$(reader list 'Ignore List Manager' | wc -l)"
picture entry-removed
press 'Ignore List Manager' OK
ok "OK closes" reader gone 'Ignore List Manager'
ok "the first is stored as switched off" is_stored ";$entry"
ok "and no more as switched on" lacks_value "$ignored" "$entry"
ok "the second is gone" lacks_value "$ignored" "$other"
ok "a new scan" scan_through
ok "finds both" status_says "$count problems found" "$count selected"
picture found-again

# Report
drive=$WINEPREFIX/drive_c
export_as 'C:\report' save-dialog
ok "the report is said to be saved" reader wait Information
picture saved
key Return
ok "the message closes" reader gone Information
ok "it is written with its ending, byte for byte" result report "$work/found.json" "$drive/report.txt"
echo old >"$drive/report.txt"
export_as 'C:\report'
ok "a name that gets its ending asks before it is overwritten" reader wait Confirmation
picture overwrite
key alt+n
ok "No opens the dialog again" reader wait 'Save As'
ok "and writes nothing" grep -qx old "$drive/report.txt"
key Escape
ok "Cancel ends the export" reader wait "$title"
export_as 'C:\report'
ok "it asks again" reader wait Confirmation
key alt+y
ok "Yes" reader wait Information
key Return
ok "saves" reader gone Information
ok "the new report" result report "$work/found.json" "$drive/report.txt"
mkdir "$drive/folder.txt"
export_as 'C:\folder'
ok "a folder of that name asks too" reader wait Confirmation
key alt+y
ok "a failing write says the system's reason" reader saying Error 'The report could not be saved. Reason: Access denied.'
picture failing
key Return
ok "and the program goes on" reader wait "$title"

ok "the program ends" close_window

echo "$passed passed, $failed failed"
exit $((failed > 0))
