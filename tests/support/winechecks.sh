# Sourced by the scripts in tests/wine/: counts checks, runs the console program, fills a prefix with broken entries.
# Expects tools/wine.sh and the variable work, a folder of the script's own.

source tests/support/checks.sh

folder=build/windows-x64/Corvalt

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

# error_says TEXT: standard error names it.
error_says() {
  cat "$work/err"
  grep -qF -- "$1" "$work/err"
}

# Prints the file that lists the codes and captions of all sections, as the program gives them; it is asked once.
all_sections() {
  [[ -s $work/allsections ]] ||
    run_windows "$folder/corvaltc.exe" sections >"$work/allsections" 2>/dev/null </dev/null
  echo "$work/allsections"
}

section_count() {
  wc -l <"$(all_sections)"
}

result() {
  python3 tests/wine/scanresult.py "$(all_sections)" "$@"
}

# The number of problems that a scan finds; what it finds is left in found.json.
problem_count() {
  corvaltc scan --json "Z:$work/found.json" --quiet
  result count "$work/found.json"
}

# Problems of every section, real files beside them.
fill_prefix() {
  local drive=$WINEPREFIX/drive_c menu="drive_c/ProgramData/Start Menu/Programs"
  mkdir -p "$drive/Corvalt/real folder" "$WINEPREFIX/$menu/Corvalt Real" "$WINEPREFIX/$menu/Corvalt Real Without Order"
  touch "$drive"/Corvalt/real.{exe,dll,hlp} "$drive/windows/Fonts/corvaltreal.ttf"
  # The registry editor reads UTF-16 with a mark.
  {
    printf '\xff\xfe'
    sed 's/$/\r/' tests/wine/brokenregistry.reg | iconv -f UTF-8 -t UTF-16LE
  } >"$work/broken.reg"
  run_windows regedit /S "Z:$work/broken.reg"
}

# dump FILE: the user's and the machine's registry, but for the suite's own settings and the display's, which are written
# anew with the first window. The reader shares no code with the program.
dump() {
  run_windows build/windows-x64/tests/wine_rawregistry.exe dump HKCU 'HKLM\Software' 'HKLM\System' 'HKU\.Default' |
    grep -avE '\\Software\\TessalySoft|\\Control\\Video\\' | sort >"$1"
}

# same_registry FILE FILE: shows what differs.
same_registry() {
  diff "$1" "$2" | head -n 30
  cmp -s "$1" "$2"
}
