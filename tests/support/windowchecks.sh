# Sourced by the scripts in tests/wine/ that drive the window: input with mouse and keyboard as a user gives it, and
# what stands in the window read from another process. Expects "set -euo pipefail" and the variable work, a folder of
# the script's own; pictures of each step are left there.

rm -rf "$work"
mkdir -p "$work"
source tools/wine.sh
source tests/support/winechecks.sh
trap stop_wine EXIT

suite='HKCU\Software\TessalySoft\Tessaly Utilities'
title='Corvalt Registry Cleaner'
program=
copy=
patience=${CORVALT_PATIENCE:-60}

# Letters that follow each other within a second belong to one word.
typing_pause=1.2

# The numbers of commands.
scan_command=1001
repair_command=1002

# Without a window manager the windows draw their own title bars.
start_window_tests() {
  start_display
  start_fresh_wine "$PWD/build/wine"
  run_windows reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
}

# Where several copies of the program run, copy is the process that is meant.
reader() {
  run_windows build/windows-x64/tests/wine_windowreader.exe ${copy:+-p "$copy"} "$@" </dev/null
}

# eventually COMMAND...: tries until it succeeds; the machine may be busy. Says what the last try said.
eventually() {
  local end=$((SECONDS + patience)) code=0
  until "$@" >"$work/try" 2>&1; do
    if ((SECONDS > end)); then
      code=1
      break
    fi
    sleep 0.05
  done
  cat "$work/try"
  return $code
}

# glance NAME: the whole screen, at once.
glance() {
  import -window root "$work/$1.png"
}

# picture NAME: the whole screen, once two looks at it are the same.
picture() {
  local before= after= tries
  for ((tries = 0; tries < 30; ++tries)); do
    import -window root "$work/$1.png"
    after=$(cksum <"$work/$1.png")
    if [[ $after == "$before" ]]; then
      return
    fi
    before=$after
    sleep 0.1
  done
}

# The program's life

start_window() {
  run_windows "$folder/corvalt.exe" >"$work/program" 2>&1 </dev/null &
  program=$!
  reader wait "${1:-$title}"
  reader tool $scan_command enabled
}

# Waits for the program's end; its exit code must be 0.
ended() {
  local code=0
  wait "$program" || code=$?
  echo "exit code $code"
  [[ $code == 0 ]]
}

close_window() {
  reader wait "${1:-$title}"
  key alt+F4
  ended
}

# Mouse and keyboard

key() {
  xdotool key "$@"
}

click() {
  xdotool mousemove "$1" "$2" click "${3:-1}"
}

# centre LINE LEFT-FIELD: of what a line of the reader describes.
click_centre() {
  local -a fields
  IFS=$'\t' read -ra fields <<<"$1"
  click $((fields[$2] + fields[$2 + 2] / 2)) $((fields[$2 + 1] + fields[$2 + 3] / 2))
}

# press TITLE CAPTION: clicks the control that says so in the window.
press() {
  local line
  line=$(reader controls "$1" | wanted=$2 awk -F '\t' '$4 == "enabled" && $9 == ENVIRON["wanted"]' | tail -n 1 || true)
  if [[ -n $line ]]; then
    click_centre "$line" 4
  else
    missed "$2 in $1"
  fi
}

# click_list_row TITLE NUMBER: in the window's list, from 1.
click_list_row() {
  local -a fields
  IFS=$'\t' read -ra fields < <(reader list "$1" | sed -n "$2p")
  click $((fields[2] + 60)) $((fields[3] + fields[5] / 2))
}

# A step that can't be done fails like a check.
missed() {
  failed=$((failed + 1))
  echo "FAIL  nothing to click: $1"
}

# choose_action NUMBER [PICTURE]: in the chooser of the selected problem.
choose_action() {
  click_centre "$(reader controls "$title" | awk -F '\t' '$2 == "ComboBox"')" 4
  local -a list
  if ! eventually list_is_open; then
    missed "the chooser's list"
    return
  fi
  IFS=$'\t' read -ra list <"$work/list"
  picture "${2:-last}"
  click $((list[4] + 60)) $((list[5] + 16 * $1 - 7))
}

list_is_open() {
  reader windows | awk -F '\t' '$3 == "ComboLBox"' >"$work/list"
  [[ -s $work/list ]]
}

scan_through() {
  press "$title" 'Scan registry for problems'
  reader saying 'Scanning ...' 'The scan is complete.' && press 'Scanning ...' Close && reader gone 'Scanning ...'
}

# choose MENU ENTRY: opens a menu of the bar by its place and the entry by its place, both from 1.
choose() {
  local -a keys=()
  local i
  for ((i = 1; i < $1; ++i)); do keys+=(Right); done
  for ((i = 0; i < $2; ++i)); do keys+=(Down); done
  key F10 "${keys[@]}" Return
}

# window_place TITLE: left and top of the window.
window_place() {
  reader windows | wanted=$1 awk -F '\t' 'index($9, ENVIRON["wanted"]) == 1 { print $5, $6; exit }'
}

window_is_at() {
  [[ $(window_place "$1") == "$2 $3" ]]
}

# move_window TITLE LEFT TOP: drags it there by its title bar.
move_window() {
  local left top
  read -r left top < <(window_place "$1")
  xdotool mousemove $((left + 300)) $((top + 15)) mousedown 1
  xdotool mousemove $(($2 + 200)) $(($3 + 40)) mousemove $(($2 + 300)) $(($3 + 15)) mouseup 1
}

# Rows of the trees: number, role, level, states, left, top, width, height, name.

# row TREE TEXT: the first row whose name holds the text.
row() {
  reader rows "$1" | wanted=$2 awk -F '\t' 'index($9, ENVIRON["wanted"]) { print; exit }'
}

row_field() {
  row "$1" "$2" | cut -f "$3"
}

# has_states TREE TEXT STATES: exactly these of the check states and the others that are named.
has_states() {
  local states
  states=$(row_field "$1" "$2" 4)
  echo "$2: $states"
  [[ ,$states, == *,$3,* ]]
}

lacks_state() {
  local states
  states=$(row_field "$1" "$2" 4)
  echo "$2: $states"
  [[ -n $states && ,$states, != *,$3,* ]]
}

has_row() {
  [[ -n $(row "$1" "$2") ]]
}

lacks_row() {
  ! has_row "$@"
}

shown_row() {
  row "$1" "$2" >"$work/row"
  [[ -s $work/row ]] && ! cut -f 4 "$work/row" | grep -q offscreen
}

# click_in_row TREE TEXT LEFT INDENTS: so many pixels, and indents of its level and more, from the row's left.
click_in_row() {
  local -a fields
  if ! eventually shown_row "$1" "$2"; then
    missed "$2"
    return
  fi
  IFS=$'\t' read -ra fields <"$work/row"
  click $((fields[4] + 18 * (fields[2] + $4) + $3)) $((fields[5] + 11))
}

# type_ahead TREE TEXT: finds the row by typing its beginning; the tree has the keyboard.
type_ahead() {
  sleep $typing_pause
  xdotool type "$2"
  eventually has_states "$1" "$2" selected
}

has_focus() {
  [[ $(reader outline "$1" | cut -f 4) != - ]]
}

has_no_focus() {
  ! has_focus "$1"
}

# Where a row's parts lie at 96 dots per inch.
click_opener() {
  click_in_row "$1" "$2" 9 0
}

click_box() {
  click_in_row "$1" "$2" 6 1
}

click_row() {
  click_in_row "$1" "$2" 150 0
}

# Registry

query() {
  run_windows reg query "$@" 2>/dev/null | tr -d '\r'
}

has_value() {
  query "$1" /v "$2" | grep -F -- "$3"
}

lacks_value() {
  ! query "$1" /v "$2"
}
