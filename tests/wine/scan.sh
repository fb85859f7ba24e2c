#!/usr/bin/env bash
# The console program over the real registry and real files: what it finds, writes and answers. Ends with
# "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/wine.sh
trap stop_wine EXIT

here=tests/wine
folder=build/windows-x64/Corvalt
work=$PWD/build/wine-scan
rm -rf "$work"
mkdir -p "$work"
passed=0
failed=0

# ok NAME COMMAND...: passed when the command succeeds.
ok() {
  local name=$1
  shift
  if "$@" >"$work/last" 2>&1; then
    passed=$((passed + 1))
    echo "ok    $name"
  else
    failed=$((failed + 1))
    echo "FAIL  $name"
    head -n 40 "$work/last" | sed 's/^/      /'
  fi
}

# corvaltc ARGUMENT...: runs it; sets code, and leaves both outputs in files.
corvaltc() {
  code=0
  run_windows "$folder/corvaltc.exe" "$@" >"$work/out" 2>"$work/err" </dev/null || code=$?
}

answered() {
  echo "answered $code"
  cat "$work/err"
  [[ $code == "$1" ]]
}

result() {
  python3 $here/scanresult.py "$@"
}

said_nothing() {
  [[ ! -s $work/out && ! -s $work/err ]]
}

# error_says TEXT: standard error names it.
error_says() {
  cat "$work/err"
  grep -qF -- "$1" "$work/err"
}

# setting KEY VALUE EXPECTED: a value of the suite's settings, as reg.exe prints it.
setting() {
  run_windows reg query "HKCU\\Software\\TessalySoft\\Tessaly Utilities$1" /v "$2" | tr -d '\r' | tee "$work/query"
  grep -qE -- "^ +$2 +$3\$" "$work/query"
}

has_key() {
  run_windows reg query "HKCU\\Software\\TessalySoft\\Tessaly Utilities$1" >/dev/null
}

lines_are() {
  ! grep -q $'\r' "$work/out" && [[ $(wc -l <"$work/out") == "$1" ]]
}

usage_error() {
  corvaltc "$@"
  [[ $code == 2 && ! -s $work/out && -s $work/err ]]
}

fill_prefix() {
  local drive=$WINEPREFIX/drive_c menu="drive_c/ProgramData/Start Menu/Programs"
  mkdir -p "$drive/Corvalt/real folder" "$WINEPREFIX/$menu/Corvalt Real" "$WINEPREFIX/$menu/Corvalt Real Without Order"
  touch "$drive"/Corvalt/real.{exe,dll,hlp} "$drive/windows/Fonts/corvaltreal.ttf"
  # The registry editor reads UTF-16 with a mark.
  {
    printf '\xff\xfe'
    sed 's/$/\r/' $here/brokenregistry.reg | iconv -f UTF-8 -t UTF-16LE
  } >"$work/broken.reg"
  run_windows regedit /S "Z:$work/broken.reg"
}

start_display
start_fresh_wine "$PWD/build/wine"
json=Z:$work

# What a fresh prefix holds is compared with later, and its exit code agrees with it.
corvaltc scan --json "$json/fresh.json" --quiet
fresh_found=$(result count "$work/fresh.json")
ok "a fresh prefix is scanned" answered $((fresh_found > 0 ? 1 : 0))
ok "quiet says nothing" said_nothing
ok "the start sequence writes the language" setting "" Language "REG_SZ +english\.lng"
ok "the start sequence writes the number of backups" setting '\Settings' BackupsMax "REG_DWORD +0x3c"
ok "the start sequence writes the age of backups" setting '\Settings' BackupsDelete "REG_DWORD +0x1"
ok "the start sequence makes the ignore list" has_key '\Corvalt\IgnoreList'
ok "the start sequence makes the cleaner's settings" has_key '\Corvalt\Settings'

fill_prefix
corvaltc scan --json "$json/found.json" --report "$json/found.txt"
cp "$work/out" "$work/listing"
ok "problems are found" answered 1
ok "exactly the broken entries are found" \
  result expected "$work/fresh.json" "$work/found.json" $here/brokenregistry.expected $folder/languages/english.lng
ok "the report says the same, byte for byte" result report "$work/found.json" "$work/found.txt"
ok "so does the listing" result listing "$work/found.json" "$work/listing"

corvaltc scan --json - --report "$json/second.txt"
cp "$work/out" "$work/second.json"
ok "a second scan answers the same" answered 1
ok "a second scan finds the same" result same "$work/found.json" "$work/second.json"
ok "a report is replaced" cmp "$work/found.txt" "$work/second.txt"

corvaltc scan --sections 9,1,19 --json -
cp "$work/out" "$work/some.json"
ok "only the chosen sections run" result captions "$work/some.json" "Registry Integrity" "Shared Programs" "ARP Cache"
ok "some problems are found" answered 1
corvaltc scan --sections 16 --json -
cp "$work/out" "$work/none.json"
ok "nothing found answers 0" answered 0
ok "nothing found is an empty list" cmp "$work/none.json" <(echo '{"sections":[]}')

corvaltc sections
ok "sections answers 0" answered 0
ok "sections lists 22 lines" lines_are 22
corvaltc --help
ok "help answers 0" answered 0
corvaltc --version
ok "version is one line" lines_are 1
ok "no command is wrong usage" usage_error
ok "an unknown option is wrong usage" usage_error scan --fast
ok "an unknown section is wrong usage" usage_error scan --sections 1,2
ok "a repeated option is wrong usage" usage_error scan --quiet --quiet
ok "a missing value is wrong usage" usage_error scan --json

corvaltc scan --sections 1 --report 'C:\no such folder\a.txt' --json "$json/beside.json"
ok "a file that can't be written answers 3" answered 3
ok "the reason names the file" error_says 'C:\no such folder\a.txt: '
ok "the other file is still written" result captions "$work/beside.json" "Registry Integrity"

corvaltc scan --sections 1 --json "$json/Straße 中.json" --quiet
ok "a file name may hold any character" result captions "$work/Straße 中.json" "Registry Integrity"

cp -r $folder "$work/Corvalt"
rm "$work/Corvalt/data/xdata.dat"
folder=$work/Corvalt
corvaltc scan --json "$json/failed.json" --report "$json/failed.txt"
ok "a scan that fails answers 3" answered 3
ok "the reason names the catalogue" error_says 'data\xdata.dat'
# The section that failed is in the file too, with no problem and no count.
ok "what was found before is written" python3 - "$work/failed.json" "$work/found.json" <<'PY'
import json
import sys

failed, found = (json.load(open(path, encoding="utf-8"))["sections"] for path in sys.argv[1:])
assert failed[:4] == found[:4] and failed[0]["caption"] == "Registry Integrity", failed
assert [(s["caption"], s["childCount"], s["problems"]) for s in failed[4:]] == [("Adware and Spyware", 0, [])], failed
PY
ok "so is its report" grep -q "Adware and Spyware(0 Problems found)" "$work/failed.txt"

echo "$passed passed, $failed failed"
((failed == 0))
