# Sourced by the scripts that run Windows programs: a Wine prefix, its server and a display of their own, and an end
# that leaves nothing running. Expects "set -euo pipefail".

export LC_ALL=C.UTF-8 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Without its own debugger a program that crashes ends, instead of waiting in a dialog; the other two would offer a
# download.
export WINEDLLOVERRIDES="winedbg.exe=d;mscoree=;mshtml="

wine_program=/usr/lib/wine/wine64
wine_server=/usr/lib/wine/wineserver64
display_process=

# The last core that this shell may use. Server and programs share it: a call between cores costs 15 times as much.
wine_core=$(taskset -cp $$ | sed 's/.*[:,-] *//')

# Starts an invisible display, if there is none.
start_display() {
  if [[ -n ${DISPLAY:-} ]]; then
    return
  fi
  local number_file
  number_file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$number_file" 2>/dev/null &
  display_process=$!
  local tries=0
  until [[ -s $number_file ]]; do
    if ! kill -0 "$display_process" 2>/dev/null || ((++tries > 200)); then
      echo "The virtual display did not start." >&2
      return 1
    fi
    sleep 0.1
  done
  DISPLAY=:$(<"$number_file")
  export DISPLAY
  rm -f "$number_file"
}

# start_wine PREFIX: starts the prefix's server, and makes the prefix if there is none yet.
start_wine() {
  export WINEPREFIX=$1
  if [[ ! -e $WINEPREFIX/.complete ]]; then
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
  fi
  taskset -c "$wine_core" "$wine_server" -p
  if [[ ! -e $WINEPREFIX/.complete ]]; then
    run_windows wineboot -i >/dev/null 2>&1
    run_windows reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null
    if [[ ! -e $WINEPREFIX/drive_c/windows/system32/kernel32.dll ]]; then
      echo "Wine could not make the prefix $WINEPREFIX" >&2
      return 1
    fi
    touch "$WINEPREFIX/.complete"
  fi
}

# start_fresh_wine FOLDER: starts a prefix in which nothing ran before. It is a copy of one that is made once.
start_fresh_wine() {
  if [[ ! -e $1/pristine/.complete ]]; then
    start_wine "$1/pristine"
    "$wine_server" -k
    "$wine_server" -w
  fi
  WINEPREFIX=$1/used "$wine_server" -k 2>/dev/null || true
  rm -rf "$1/used"
  cp -a "$1/pristine" "$1/used"
  start_wine "$1/used"
}

run_windows() {
  taskset -c "$wine_core" "$wine_program" "$@"
}

# Ends the display that start_display started, if it had to.
stop_display() {
  if [[ -n $display_process ]]; then
    kill "$display_process" 2>/dev/null || true
    wait "$display_process" 2>/dev/null || true
    display_process=
    unset DISPLAY
  fi
}

# Ends what start_wine and start_display started, and the programs that still run in the prefix.
stop_wine() {
  if [[ -n ${WINEPREFIX:-} ]]; then
    "$wine_server" -k 2>/dev/null || true
  fi
  stop_display
}
