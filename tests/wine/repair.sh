#!/usr/bin/env bash
# Repair and restore over the real registry: the round trip over problems of every section, a repair that is killed at
# any moment, and a full disk. CORVALT_KILLS says how many kills (12). Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/wine.sh
trap stop_wine EXIT

work=$PWD/build/wine-repair
kills=${CORVALT_KILLS:-12}
problems=3000
mkdir -p "$work"
source tests/support/winechecks.sh

backup_names() {
  corvaltc backups
  cut -f 1 "$work/out"
}

newest_backup() {
  backup_names | head -n 1
}

one_backup_is_listed() {
  cat "$work/out"
  [[ $(wc -l <"$work/out") == 1 ]] && grep -qE $'^[0-9]+[.,]?[0-9]*\t[^\t]+\t[0-9]+$' "$work/out"
}

seconds_since() {
  awk -v begin="$1" -v end="$EPOCHREALTIME" 'BEGIN { print end - begin }'
}

part_of() {
  awk -v whole="$1" -v part="$2" -v count="$3" 'BEGIN { print whole * part / count }'
}

start_repair() {
  taskset -c "$wine_core" "$wine_program" "$folder/corvaltc.exe" repair --yes --sections 7,22 \
    >"$work/out" 2>"$work/err" </dev/null &
  repair_process=$!
}

# The names of the backups' files; one has its name when it is complete.
backup_files() {
  find "$backups" -type f ! -name index.ini ! -name '*.tmp' ! -name '*.log' -printf '%f\n'
}

# The backup's file is the last thing that is written before the first deletion.
wait_for_backup_file() {
  until [[ -n $(backup_files) ]] || ! kill -0 "$repair_process" 2>/dev/null; do
    sleep 0.002
  done
}

# kill_repair NUMBER: a third of the kills falls before the first deletion, the others from there on.
kill_repair() {
  local number=$1 early=$((kills / 3))
  start_repair
  if ((number <= early)); then
    sleep "$(part_of "$until_file" "$number" $((early + 1)))"
  else
    wait_for_backup_file
    sleep "$(part_of "$until_end" $((number - early - 1)) $((kills - early)))"
  fi
  kill -9 "$repair_process" 2>/dev/null || true
  wait "$repair_process" 2>/dev/null || true
}

# What is gone is in a listed backup, and comes back byte for byte. A backup that was killed before its file was
# written is listed without one, and nothing was deleted then.
undone_by_restore() {
  local name
  for name in $(backup_names); do
    if [[ -e $backups/$name ]]; then
      corvaltc restore "$name"
      answered 0 || return 1
    fi
  done
  dump "$work/restored"
  same_registry "$work/before" "$work/restored"
}

round_trip() {
  fill_prefix
  # The first run writes the settings and shows what the prefix itself holds.
  corvaltc scan --json "Z:$work/found.json" --quiet
  dump "$work/before"
  corvaltc repair
  ok "without --yes it answers 1" answered 1
  dump "$work/after"
  ok "and deletes nothing" same_registry "$work/before" "$work/after"
  corvaltc repair --yes --json "Z:$work/repaired.json"
  cp "$work/out" "$work/left"
  cp "$work/err" "$work/told"
  ok "everything is repaired, or what is left is listed" \
    test "$code" == "$([[ -s $work/left ]] && echo 1 || echo 0)"
  ok "the JSON says what was found" cmp "$work/found.json" "$work/repaired.json"
  dump "$work/after"
  ok "something is gone" test "$(comm -23 "$work/before" "$work/after" | wc -l)" -gt 80
  corvaltc scan --json "Z:$work/again.json"
  cp "$work/out" "$work/again"
  ok "a second scan finds only keys that the deletions changed, and one path that names no key" \
    python3 tests/wine/repairresult.py "$work/found.json" "$work/again.json"
  corvaltc backups
  ok "one backup is listed" one_backup_is_listed
  corvaltc restore "$(newest_backup)"
  ok "it is restored" answered 0
  dump "$work/restored"
  ok "every key and value is back, byte for byte" same_registry "$work/before" "$work/restored"
  corvaltc restore 1
  ok "a backup that is not listed answers 3" answered 3
}

value_is_there() {
  run_windows reg query 'HKCU\Software\Corvalt 98' /v "$1"
}

# A system that makes no security descriptors, for the lock of the backups too.
windows_98() {
  run_windows reg add 'HKCU\Software\Wine' /v Version /d win98 /f >/dev/null
  run_windows reg add 'HKCU\Software\Corvalt 98' /v File /d 'C:\no such folder\gone.exe' /f >/dev/null
  corvaltc repair --yes --sections 22
  ok "on Windows 98 the repair ends" test "$code" -lt 2
  ok "and what it saved is gone" test "$(value_is_there File >/dev/null 2>&1 && echo there)" == ""
  corvaltc restore "$(newest_backup)"
  ok "it is restored there" answered 0
  ok "and back" value_is_there File
  run_windows reg delete 'HKCU\Software\Corvalt 98' /f >/dev/null
  run_windows reg delete 'HKCU\Software\Wine' /v Version /f >/dev/null
}

killed_at_any_moment() {
  run_windows build/windows-x64/tests/wine_rawregistry.exe fill $problems
  dump "$work/before"
  local begin number gone middle=0
  rm -rf "${backups:?}"/*
  begin=$EPOCHREALTIME
  start_repair
  wait_for_backup_file
  until_file=$(seconds_since "$begin")
  begin=$EPOCHREALTIME
  wait "$repair_process" || true
  until_end=$(seconds_since "$begin")
  echo "$until_file s until the first deletion, $until_end s from there to the end"
  dump "$work/after"
  ok "an undisturbed repair deletes all" test "$(comm -23 "$work/before" "$work/after" | wc -l)" -ge $problems
  ok "and is undone by a restore" undone_by_restore
  all=$(comm -23 "$work/before" "$work/after" | wc -l)
  for ((number = 1; number <= kills; ++number)); do
    rm -rf "${backups:?}"/*
    kill_repair "$number"
    dump "$work/after"
    gone=$(comm -23 "$work/before" "$work/after" | wc -l)
    ((gone == 0 || gone == all)) || middle=$((middle + 1))
    ok "kill $number: $gone of $all lines were gone, and are back" undone_by_restore
  done
  ok "$middle of $kills kills fell between the first deletion and the last" test "$middle" -gt 0
}

nothing_was_deleted() {
  dump "$work/after"
  same_registry "$work/before" "$work/after"
}

no_file_is_left() {
  ls -lA "$backups"
  [[ -z $(ls -A "$backups") ]]
}

# Runs with the backup folder on a disk of 64 KB; without a namespace of its own and the right to mount one there, no
# process may write a longer file.
full_disk() {
  start_wine "$WINEPREFIX"
  dump "$work/before"
  local mounted=yes
  if [[ $mounts != isolated ]] || ! mount -t tmpfs -o size=64k corvalt-test "$backups"; then
    mounted=
    echo "no right to mount: a limit of file sizes stands for the full disk"
    rm -rf "${backups:?}"/*
    trap '' XFSZ
    ulimit -f 64
  fi
  corvaltc repair --yes --sections 7,22
  ulimit -f unlimited 2>/dev/null || true
  ok "a full disk answers 3" answered 3
  ok "with a clear message" error_says "before anything was deleted"
  ok "nothing was deleted" nothing_was_deleted
  ok "no file is left in the folder" no_file_is_left
  stop_wine
  # The namespace may share its mounts with the one outside.
  if [[ -n $mounted ]]; then
    umount "$backups"
  fi
  echo "$passed passed, $failed failed" >"$work/counts"
}

if [[ ${1:-} == --full-disk ]]; then
  backups=$2
  mounts=${3:-}
  full_disk
  exit
fi

rm -rf "$work"
mkdir -p "$work"
start_display
start_fresh_wine "$PWD/build/wine"
round_trip
windows_98
backups=$(find "$WINEPREFIX/drive_c/users" -type d -path '*/TessalySoft/Tessaly Utilities/Backups')
killed_at_any_moment

# A namespace of its own: the server opens the files for its programs, so that it must be started there.
rm -rf "${backups:?}"/*
"$wine_server" -k
"$wine_server" -w || true
isolate=
mounts=
# In a changed root the propagation of mounts can't be changed.
for way in "unshare -m" "unshare -m --propagation unchanged"; do
  if $way true 2>/dev/null; then
    isolate=$way
    mounts=isolated
    break
  fi
done
$isolate bash "$0" --full-disk "$backups" $mounts || true
read -r more_passed _ more_failed _ < <(cat "$work/counts" 2>/dev/null || echo "0 passed, 1 failed")
passed=$((passed + more_passed))
failed=$((failed + more_failed))

echo "$passed passed, $failed failed"
((failed == 0))
