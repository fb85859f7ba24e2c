#!/usr/bin/env bash
# Two copies of the program at once: both scan, ignore, repair and restore, and neither loses what the other stored.
# Pictures of each step are left in build/wine-windowcopies/. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowcopies
source tests/support/windowchecks.sh

ignored="$suite\\Corvalt\\IgnoreList"

main_windows() {
  copy='' reader windows | awk -F '\t' '$3 == "TfrmRegMain"'
}

two_windows() {
  main_windows
  [[ $(main_windows | wc -l) == 2 ]]
}

# ignore_row TEXT SECTION: by the keyboard, from the copy's results tree; SECTION is the beginning of its section's name.
ignore_row() {
  click_row results 'Registry Integrity'
  eventually has_states results 'Registry Integrity' focused
  type_ahead results "$2"
  key Down
  eventually has_states results "$1" selected
  choose_action 3
  reader wait Confirmation
  key alt+y
  eventually lacks_row results "$1"
}

is_stored() {
  has_value "$ignored" "$1" 0x1
}

# Of the copy's Sections tree, where all are checked.
all_but_section() {
  click_box sections "$1"
  eventually lacks_state sections "$1" checked
}

only_section() {
  click_box sections 'My Computer'
  eventually lacks_state sections "$1" checked
  click_box sections "$1"
  eventually has_states sections "$1" checked
}

backups() {
  corvaltc backups
  [[ $code == 0 && $(wc -l <"$work/out") == "$1" ]]
}

repair_ends() {
  reader saying 'Repairing ...' 'The repair is complete.'
  press 'Repairing ...' Close
  reader gone 'Repairing ...'
}

# restore_row NUMBER: of the restore dialog that is open.
restore_row() {
  click_list_row Restore "$1"
  press Restore Restore
  reader wait Confirmation
  key alt+y
  reader wait Information
  key Return
  reader gone Information
}

lists() {
  [[ $(reader list "$1" | wc -l) == "$2" ]]
}

close_copy() {
  reader close
  ended
}

start_window_tests
fill_prefix

ok "the first copy starts" start_window
first=$(main_windows | cut -f 2)
copy=$first
move_window "$title" 0 0
ok "it is moved to the side" eventually window_is_at "$title" 0 0
first_program=$program
run_windows "$folder/corvalt.exe" >"$work/second" 2>&1 </dev/null &
second_program=$!
ok "the second copy starts beside it" eventually two_windows
second=$(main_windows | cut -f 2 | grep -vx "$first")
copy=$second
ok "it can be used" reader tool $scan_command enabled
move_window "$title" 520 445
ok "it is moved to the other side" eventually window_is_at "$title" 520 445
picture two

# Ignore list
copy=$first
ok "the first scans" scan_through
copy=$second
ok "the second scans" scan_through
copy=$first
ok "the first ignores a row" ignore_row 'HKEY_CURRENT_USER\software\Corvalt Empty' Obsolete
copy=$second
ok "the second ignores another" ignore_row 'HKEY_CURRENT_USER\AppEvents' Sounds
picture ignored
first_entry='HKEY_CURRENT_USER\software\Corvalt Empty'\\
second_entry='HKEY_CURRENT_USER\AppEvents\Schemes\Apps\Corvalt\Open\.Current'\\
ok "the first's entry is stored" is_stored "$first_entry"
ok "the second's too" is_stored "$second_entry"
copy=$first
press "$title" 'Ignore List Manager'
ok "the first opens its manager" reader wait 'Ignore List Manager'
picture manager
press 'Ignore List Manager' OK
ok "OK closes it" reader gone 'Ignore List Manager'
ok "the first's entry is still stored" is_stored "$first_entry"
ok "so is the second's" is_stored "$second_entry"
press "$title" 'Ignore List Manager'
ok "the manager opens again" reader wait 'Ignore List Manager'
ok "now it shows both" lists 'Ignore List Manager' 4
key Escape
ok "it closes" reader gone 'Ignore List Manager'

# Repairs at the same time
dump "$work/before"
ok "the first leaves one section out" all_but_section 'Custom Controls'
ok "and scans" scan_through
copy=$second
ok "the second takes that section alone" only_section 'Custom Controls'
ok "and scans" scan_through
picture before-repair
press "$title" 'Repair your registry'
copy=$first
press "$title" 'Repair your registry'
ok "the first repairs" repair_ends
copy=$second
ok "the second repairs" repair_ends
picture repaired
ok "both backups are listed" backups 2
press "$title" 'Restore previous repairs'
ok "the second opens the restore dialog" reader wait Restore
ok "which lists both" lists Restore 2
picture restore
ok "it restores one" restore_row 1
ok "and the other" restore_row 2
key Escape
ok "it closes the dialog" reader gone Restore
dump "$work/after"
ok "every key and value is back, byte for byte" same_registry "$work/before" "$work/after"

copy=$first
program=$first_program
ok "the first ends with 0" close_copy
copy=$second
ok "the second goes on" scan_through
program=$second_program
ok "and ends with 0" close_copy

echo "$passed passed, $failed failed"
exit $((failed > 0))
