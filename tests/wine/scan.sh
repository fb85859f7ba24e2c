#!/usr/bin/env bash
# The console program over the real registry and real files: what it finds, writes and answers. Ends with
# "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/wine.sh
trap stop_wine EXIT

here=tests/wine
work=$PWD/build/wine-scan
rm -rf "$work"
mkdir -p "$work"
source tests/support/winechecks.sh

said_nothing() {
  [[ ! -s $work/out && ! -s $work/err ]]
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

lists_sections() {
  ! grep -vqE $'^[0-9]+\t[^\t\r]+$' "$work/out" && [[ $(cut -f 1 "$work/out" | sort -u | wc -l) -ge 22 ]]
}

usage_error() {
  corvaltc "$@"
  [[ $code == 2 && ! -s $work/out && -s $work/err ]]
}

no_later_section() {
  result captions "$1" "Registry Integrity" "HKEY_LOCAL_MACHINE - Files and Folders" ||
    result captions "$1" "Registry Integrity"
}

# is_narrow FILE: no line takes more than 100 columns of a terminal.
is_narrow() {
  python3 - "$1" <<'END'
import sys, unicodedata
for line in open(sys.argv[1], encoding="utf-8"):
    assert sum(2 if unicodedata.east_asian_width(unit) in "WF" else 1 for unit in line.rstrip("\n")) <= 100, line
END
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
ok "the schema in docs/ describes the JSON" python3 -m jsonschema -i "$work/second.json" docs/scan.schema.json
corvaltc ignore add HKEY_CURRENT_USER
corvaltc scan --json -
cp "$work/out" "$work/headless.json"
ok "it describes sections whose header is ignored" python3 -m jsonschema -i "$work/headless.json" docs/scan.schema.json
ok "some header was ignored" grep -q '"caption":""' "$work/headless.json"
corvaltc ignore remove HKEY_CURRENT_USER
run_windows reg add 'HKCU\Software\TessalySoft\Tessaly Utilities' /v Language /d japanese.lng /f >/dev/null
corvaltc scan --json -
ok "the JSON is the same in every language" cmp "$work/out" "$work/second.json"
corvaltc help
ok "the help is in the user's language" grep -qF "$(sed -n 's/^40130=//p' languages/japanese.lng)" "$work/out"
ok "no line of it is too wide" is_narrow "$work/out"
run_windows reg add 'HKCU\Software\TessalySoft\Tessaly Utilities' /v Language /d english.lng /f >/dev/null
ok "a report is replaced" cmp "$work/found.txt" "$work/second.txt"

corvaltc scan --sections 9,1,19 --json -
cp "$work/out" "$work/some.json"
ok "only the chosen sections run" result captions "$work/some.json" "Registry Integrity" "Shared Programs" "ARP Cache"
ok "some problems are found" answered 1
corvaltc scan --sections 16 --json -
cp "$work/out" "$work/none.json"
ok "nothing found answers 0" answered 0
ok "nothing found is an empty list" cmp "$work/none.json" <(echo '{"formatVersion":1,"sections":[]}')

corvaltc sections
ok "sections answers 0" answered 0
ok "sections lists a code and a caption a line" lists_sections
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

# In the middle of the second section, with the progress line and the outcome on a console of its own.
code=0
run_windows build/windows-x64/tests/wine_interrupt.exe "Files and Folders - HKEY_LOCAL_MACHINE" "$folder/corvaltc.exe" \
  scan --json "$json/cancelled.json" --report "$json/cancelled.txt" >"$work/screen" </dev/null || code=$?
ok "Ctrl-C ends the scan by what was found" answered 1
ok "a word says so" grep -q "^Scan cancelled" "$work/screen"
ok "no later section ran" no_later_section "$work/cancelled.json"
ok "the report is written all the same" result report "$work/cancelled.json" "$work/cancelled.txt"

cp -r $folder "$work/Corvalt"
rm "$work/Corvalt/data/xdata.dat"
folder=$work/Corvalt
corvaltc scan --json "$json/failed.json" --report "$json/failed.txt"
ok "a scan that fails answers 3" answered 3
ok "the reason names the catalogue" error_says 'data\xdata.dat'
ok "what was found before is written" python3 - "$work/failed.json" "$work/found.json" <<'PY'
import json
import sys

failed, found = (json.load(open(path, encoding="utf-8"))["sections"] for path in sys.argv[1:])
assert failed == found[:4] and failed[0]["caption"] == "Registry Integrity", failed
PY
ok "the schema describes that too" python3 -m jsonschema -i "$work/failed.json" docs/scan.schema.json
ok "the report has the same" result report "$work/failed.json" "$work/failed.txt"

echo "$passed passed, $failed failed"
((failed == 0))
