# Sourced by the scripts that run Windows programs: a Wine prefix, its server and a display of their own, and an end
# that leaves nothing running. Expects "set -euo pipefail".

export LC_ALL=C.UTF-8 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Without its own debugger a program that crashes ends, instead of waiting in a dialog. The menu builder would put what a
# program installs into the menus of whoever runs this; the other two would offer a download.
export WINEDLLOVERRIDES="winedbg.exe=d;winemenubuilder.exe=d;mscoree=;mshtml="

wine_program=/usr/lib/wine/wine64
wine_server=/usr/lib/wine/wineserver64
wine_fonts=/usr/share/wine/fonts
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

# start_wine PREFIX [PERSISTENCE]: starts the prefix's server, and makes the prefix if there is none yet. The server
# stays until it is ended, or as many seconds after the last program as are given.
start_wine() {
  export WINEPREFIX=$1
  if [[ ! -e $WINEPREFIX/.complete ]]; then
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
  fi
  # A server that runs already is told by its exit code 2.
  taskset -c "$wine_core" "$wine_server" -p"${2:-}" || (($? == 2))
  if [[ ! -e $WINEPREFIX/.complete ]]; then
    run_windows wineboot -i >/dev/null 2>&1
    run_windows reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null
    if [[ ! -e $WINEPREFIX/drive_c/windows/system32/kernel32.dll ]]; then
      echo "Wine could not make the prefix $WINEPREFIX" >&2
      return 1
    fi
    give_fonts
    touch "$WINEPREFIX/.complete"
  fi
}

# Tahoma, and a font for the characters that it lacks, as Windows has them. Debian's Wine doesn't look into the folder of
# its own fonts, and takes another one for Tahoma.
give_fonts() {
  # A font that is missing would show as other measures or boxes, and no check would fail.
  ls "$wine_fonts"/tahoma{,bd}.ttf /usr/share/fonts/truetype/wqy/wqy-microhei.ttc >/dev/null
  ln -s "$wine_fonts"/tahoma{,bd}.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
  local face
  for face in Tahoma 'Tahoma Bold'; do
    run_windows reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' /v "$face" \
      /t REG_MULTI_SZ /d 'wqy-microhei.ttc,WenQuanYi Micro Hei' /f >/dev/null
  done
}

# make_pristine_wine FOLDER: the prefix that others are copies of, made once. Scripts that begin together wait for the
# one that makes it.
make_pristine_wine() {
  mkdir -p "$1"
  local lock
  exec {lock}>"$1/lock"
  flock "$lock"
  if [[ ! -e $1/pristine/.complete ]]; then
    # The server would hold the lock as long as it runs.
    start_wine "$1/pristine" {lock}>&-
    end_wine_server
  fi
  exec {lock}>&-
}

# start_fresh_wine FOLDER: starts a prefix in which nothing ran before. Each core has one, so that scripts on different
# cores don't meet.
start_fresh_wine() {
  make_pristine_wine "$1"
  local prefix=$1/core$wine_core
  WINEPREFIX=$prefix "$wine_server" -k 2>/dev/null || true
  rm -rf "$prefix"
  cp -a "$1/pristine" "$prefix"
  start_wine "$prefix"
}

# start_lasting_wine FOLDER: starts a prefix that keeps what earlier programs left in it. Its server ends some time after
# the last program, so that a row of short programs has one server.
start_lasting_wine() {
  make_pristine_wine "$1"
  if [[ ! -e $1/lasting/.complete ]]; then
    cp -a "$1/pristine" "$1/lasting.$$"
    mv -T "$1/lasting.$$" "$1/lasting" || rm -r "$1/lasting.$$"
  fi
  start_wine "$1/lasting" 10
}

end_wine_server() {
  "$wine_server" -k
  "$wine_server" -w
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
