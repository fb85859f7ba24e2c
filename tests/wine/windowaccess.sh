#!/usr/bin/env bash
# What assistive technology sees of the two trees and does with them, by MSAA from another process. Pictures are left in
# build/wine-windowaccess/. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowaccess
source tests/support/windowchecks.sh

# outline_is TREE ROLE ROWS SELECTED FOCUS
outline_is() {
  reader outline "$1" | tee "$work/outline"
  [[ $(<"$work/outline") == "$2"$'\t'"$3"$'\t'"$4"$'\t'"$5" ]]
}

# Every row of the tree: number, role, level, states, name. Captions of the results, which the expected names are made of,
# differ in letter case from those of the tree.
sections_are_as_they_stand() {
  reader rows sections | cut -f 1-4,9 | sed 's/,offscreen//' >"$work/rows"
  diff -i "$work/sections.expected" "$work/rows"
}

# The rows lie one below the other, and where each one in sight lies MSAA finds it.
rows_lie_where_they_are_found() {
  local -a row
  local below='' shown=0
  reader rows "$1" >"$work/rows"
  while IFS=$'\t' read -ra row; do
    if [[ -n $below && ${row[5]} != "$below" ]]; then
      echo "${row[8]} lies at ${row[5]}, not $below"
      return 1
    fi
    below=$((row[5] + row[7]))
    if [[ ${row[3]} != *offscreen* ]] && is_whole; then
      shown=$((shown + 1))
      [[ $(reader at "$1" $((row[4] + 30)) $((row[5] + row[7] / 2))) == "${row[0]}" ]] || return 1
    fi
  done <"$work/rows"
  echo "$shown rows in sight"
  ((shown > 4))
}

# Whether the row that was read lies whole within its tree.
is_whole() {
  ((row[5] >= tree_top && row[5] + row[7] <= tree_bottom))
}

# tree_place NUMBER: where a tree lies on the screen, by its control's number.
tree_place() {
  local -a place
  IFS=$'\t' read -ra place < <(reader controls "$title" | awk -F '\t' -v number="$1" '$3 == number')
  tree_top=${place[5]}
  tree_bottom=$((place[5] + place[7]))
}

finds() {
  [[ $(reader "${@:2}") == "$1" ]]
}

toggles() {
  reader toggle "$2" "$3" | tee "$work/action"
  [[ $(<"$work/action") == "$1" ]]
}

number_of() {
  row_field "$1" "$2" 1
}

# The alert at a scan's end, heard by another process.
alert_is_heard() {
  local listener
  reader listen alert >"$work/heard" &
  listener=$!
  eventually grep -q listening "$work/heard"
  press "$title" 'Scan registry for problems'
  wait "$listener"
  cat "$work/heard"
  grep -q 'problems found.*Click Repair' "$work/heard"
}

# object_is TITLE NUMBER ROLE NAME
object_is() {
  reader object "$1" "$2" | tee "$work/object"
  [[ $(cut -f 1,2 "$work/object") == "$3"$'\t'"$4" ]]
}

start_window_tests
fill_prefix
problem_count >"$work/count"
ok "the window starts" start_window

# Two groups beside the sections; the three sections of the second group stand one level deeper.
tree_rows=$(($(section_count) + 2))
last_section=$(tail -n 1 "$(all_sections)" | cut -f 2)
awk -F '\t' -v OFS='\t' '
    function row(level, states, name) { print ++number, "outline item", level, "checked," states "selectable", name }
    BEGIN { row(0, "expanded,", "My Computer") }
    / - Files and Folders$/ {
      if (!grouped++) row(1, "expanded,", "Files and Folders")
      sub(/ - Files and Folders$/, "", $2)
      row(2, "", $2)
      next
    }
    { row(1, "", $2) }
  ' "$(all_sections)" >"$work/sections.expected"

# Sections tree: it has the keyboard at first, and no row is selected.
ok "the Sections tree is an outline with a row for each section and group" outline_is sections outline "$tree_rows" - 0
ok "its rows have names, levels and states" sections_are_as_they_stand
tree_place 2001
ok "its rows are found where they lie" rows_lie_where_they_are_found sections
ok "rows below its edge are off-screen" has_states sections "$last_section" offscreen
ok "the default action unchecks a row" toggles Uncheck sections 6
ok "which is no more checked" lacks_state sections HKEY_USERS checked
ok "its group is mixed" has_states sections 'Files and Folders' mixed
ok "and the group's group" has_states sections 'My Computer' mixed
picture unchecked
ok "the default action checks it again" toggles Check sections 6
ok "all is checked again" sections_are_as_they_stand
ok "a row can be selected" reader select sections "$tree_rows"
ok "it is selected and has the keyboard" outline_is sections outline "$tree_rows" "$tree_rows" "$tree_rows"
ok "and is brought into sight" lacks_state sections "$last_section" offscreen
picture selected

# Results tree
ok "the results tree has no rows yet" outline_is results outline 0 - -
ok "the scan" scan_through
reader rows results >"$work/rows"
ok "every problem and section has its row, with its lines as the name" result rows "$work/found.json" "$work/rows"
rows=$(wc -l <"$work/rows")
ok "the outline counts them" outline_is results outline "$rows" - -
tree_place 2002
ok "the rows are found where they lie" rows_lie_where_they_are_found results
ok "sections are open" has_states results 'Registry Integrity' expanded
ok "the next row below is found" finds 2 next results 1 down
ok "the one above" finds 1 next results 2 up
ok "the section of a problem" finds 1 next results 3 left
ok "the first problem of a section" finds 2 next results 1 right
ok "the first row of all" finds 1 next results 0 first
ok "the last" finds "$rows" next results 0 last
ok "above the first is none" finds - next results 1 up
ok "below the last is none" finds - next results "$rows" down

key_row=$(number_of results 'HKEY_CURRENT_USER\software\Corvalt Empty')
ok "a problem far below is off-screen" has_states results 'HKEY_CURRENT_USER\software\Corvalt Empty' offscreen
ok "it can be selected" reader select results "$key_row"
ok "it is, with the keyboard" outline_is results outline "$rows" "$key_row" "$key_row"
ok "and in sight" lacks_state results 'HKEY_CURRENT_USER\software\Corvalt Empty' offscreen
ok "its name has its third line" has_row results 'HKEY_CURRENT_USER\software\Corvalt Empty | This key is empty. | Action: '
ok "its rectangle is three lines high" test "$(row_field results 'HKEY_CURRENT_USER\software\Corvalt Empty' 8)" == 66
picture problem
ok "its default action unchecks it" toggles Uncheck results "$key_row"
ok "its section is mixed" has_states results 'Obsolete software' mixed
ok "the chooser follows" grep -x '\*Do not repair this problem' <(reader chooser)
ok "a section's default action checks all of it" toggles Check results $((key_row - 1))
ok "the problem is checked" has_states results 'HKEY_CURRENT_USER\software\Corvalt Empty' checked
ok "the chooser follows" grep -x '\*Repair this problem' <(reader chooser)
key Left Left
ok "a closed section says so" eventually has_states results 'Obsolete software' collapsed
ok "its problems have no rows" lacks_row results 'Corvalt Empty'
# The system's object for a drop-down list has the role of one (46) on Windows, that of a client area (10) under Wine.
ok "the drop-down list on the row has a name" object_is "$title" 2003 10 'Action:'
ok "another process hears the end of a scan" alert_is_heard
ok "the dialog is one, with its title" object_is 'Scanning ...' 0 18 'Scanning ...'
ok "and its texts" grep -q 'The scan is complete. | .*problems found' "$work/object"
press 'Scanning ...' Close
ok "it closes" reader gone 'Scanning ...'
ok "the program ends" close_window

echo "$passed passed, $failed failed"
exit $((failed > 0))
