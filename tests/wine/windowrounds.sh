#!/usr/bin/env bash
# windowrounds.sh [ROUNDS]: what the program holds before and after so many rounds (10) of clearing its results and
# scanning. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$PWD/build/wine-windowrounds
source tests/support/windowchecks.sh

rounds=${1:-10}

# Kilobytes that the allocators may keep.
memory_room=1024
# What a round leaves behind is there once a round. The system's own libraries open a handle or a window now and then,
# such as one for a thread of their pool: fewer than one in three rounds.
object_room=$((rounds / 3))

# A scan clears the results of the one before; then a problem is selected.
round() {
  step click_centre "$scan_link" 4 &&
    step reader saying 'Scanning ...' "$count problems found" &&
    step key Escape &&
    step reader gone 'Scanning ...' &&
    step click_centre "$problem" 4
}

# step COMMAND...: says what failed.
step() {
  local code=0
  "$@" || code=$?
  ((code == 0)) || echo "$* ended with $code"
  return $code
}

go_round() {
  local i
  for ((i = 0; i < $1; ++i)); do
    round || return 1
  done
}

# held NAME FILE
held() {
  awk -F '\t' -v name="$1" '$1 == name { print $2 }' "$2"
}

does_not_grow() {
  echo "$1: $(held "$1" "$work/before") before, $(held "$1" "$work/after") after"
  (($(held "$1" "$work/after") <= $(held "$1" "$work/before") + ${2:-0}))
}

start_window_tests
fill_prefix
count=$(problem_count)
ok "the window starts" start_window
scan_link=$(reader controls "$title" | awk -F '\t' '$3 == 1001')
ok "a first scan" scan_through
problem=$(reader rows results 2 2)
# The first rounds fill caches.
ok "3 rounds" go_round 3
reader resources >"$work/before"
ok "$rounds rounds more" go_round "$rounds"
picture after
reader resources >"$work/after"
paste "$work/before" "$work/after"
for name in handles windows user gdi; do
  ok "no round leaves $name behind" does_not_grow $name $object_room
done
ok "no more memory" does_not_grow private $memory_room
ok "the program ends" close_window

echo "$passed passed, $failed failed"
exit $((failed > 0))
