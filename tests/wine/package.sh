#!/usr/bin/env bash
# What users download: installed silently over an older version, used and uninstalled under Wine. The installer is a
# 64-bit build of the same script (./package --native64): a 64-bit Wine runs a 32-bit one as nothing. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."
source tools/wine.sh
trap stop_wine EXIT

work=$PWD/build/wine-package
rm -rf "$work"
mkdir -p "$work"
source tests/support/winechecks.sh
source tests/support/installation.sh

packages=$PWD/build/package
version=$(sed -nE 's/^project\(Corvalt VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)

# An installer of version 0.9 with a file that the present one lacks.
make_older_installer() {
  local older=$work/older sizes
  mkdir -p "$older"
  cp -a "$packages/x64" "$packages/x86" "$older/"
  echo "gone in later versions" >"$older/x64/old.txt"
  read -ra sizes < <(python3 packaging/installerlists.py "$older/x64" "$older/x86" "$older/lists")
  makensis -V2 -NOCD -DNATIVE64 -DVERSION=0.9 -DVERSION_NUMBERS=0.9.0.0 "-DX64=$older/x64" "-DX86=$older/x86" \
    "-DLISTS=$older/lists" "-DPRODUCT_ICON=$PWD/build/windows-x64/art/program.ico" "-DOUTPUT=$work/older.exe" "${sizes[@]}" \
    packaging/installer.nsi
}

# The files of drive C, but for Wine's own logs and temporary files.
files() {
  (cd "$WINEPREFIX/drive_c" && find . -type f -not -path '*/Temp/*' -not -path '*/temp/*' | sort) >"$1"
}

program_files() {
  (cd "$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt" && find . -type f | sort)
}

apps_value() {
  run_windows reg query "$apps" /v "$1" | tr -d '\r' | tee "$work/query"
  grep -qF -- "$2" "$work/query"
}

# refused COMMAND...: the installer ends with the code that it has when it stops by itself.
refused() {
  local code=0
  "$@" || code=$?
  echo "exit code $code"
  [[ $code == 2 ]]
}

# install_elsewhere: over the version that is there.
install_elsewhere() {
  run_windows "$setup" /S '/D=C:\Elsewhere\Corvalt'
  apps_value InstallLocation 'C:\Elsewhere\Corvalt' && test -e "$WINEPREFIX/drive_c/Elsewhere/Corvalt/corvalt.exe"
}

stays_elsewhere() {
  run_windows "$setup" /S
  apps_value InstallLocation 'C:\Elsewhere\Corvalt' && test ! -e "$usual_parent"
}

uninstall_elsewhere() {
  installed='C:\Elsewhere\Corvalt' uninstall && test ! -e "$WINEPREFIX/drive_c/Elsewhere/Corvalt"
}

# Whether it is refused while the program's window is open.
refused_while_running() {
  local reader=build/windows-x64/tests/wine_windowreader.exe code=0
  run_windows "$installed\\corvalt.exe" &
  run_windows "$reader" wait 'Corvalt Registry Cleaner'
  refused run_windows "$setup" /S || code=$?
  run_windows "$reader" close
  wait $!
  return $code
}

without_suite() {
  grep -vF 'TessalySoft' "$1"
}

same_files() {
  diff <(without_suite "$1") <(without_suite "$2")
}

# Both programs for both machine types, of at most 2 MB each, as Explorer counts them.
programs_are_small() {
  local programs=("$packages"/{x64,x86}/{corvalt,corvaltc}.exe)
  stat --format='%s %n' "${programs[@]}" && [[ -z $(find "${programs[@]}" -size +2097152c) ]]
}

setup=$packages/Corvalt-$version-setup-native64.exe
ok "no program is larger than 2 MB" programs_are_small
ok "the test's installer is made" test -s "$setup"
ok "an older version's installer is made" make_older_installer

start_display
start_fresh_wine "$PWD/build/wine"
files "$work/files.before"
dump "$work/dump.before"

usual_parent="$WINEPREFIX/drive_c/Program Files/Tessaly Utilities"
mkdir -p "$WINEPREFIX/drive_c/Blocked/help.chm"
ok "a file that can't be written ends a silent installation" refused run_windows "$setup" /S '/D=C:\Blocked'
rm -r "$WINEPREFIX/drive_c/Blocked"

ok "the older version installs silently" run_windows "$work/older.exe" /S
ok "it brings its own file" test -e "$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt/old.txt"
older_uninstaller="$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt/uninstall.exe"
mv "$older_uninstaller" "$work/uninstall.exe"
echo "no program" >"$older_uninstaller"
ok "an older version that can't remove itself is not installed over" refused run_windows "$setup" /S
ok "nor changed" test -e "$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt/old.txt"
mv "$work/uninstall.exe" "$older_uninstaller"
ok "the present version installs over it" run_windows "$setup" /S
(cd "$packages/x64" && find . -type f && echo ./uninstall.exe) | sort >"$work/expected"
program_files >"$work/installed"
ok "exactly its own files are there" diff "$work/expected" "$work/installed"
ok "Apps shows its version" apps_value DisplayVersion "$version"
ok "Apps shows its publisher" apps_value Publisher TessalySoft
ok "Apps shows its icon" apps_value DisplayIcon "$installed\\corvalt.exe,0"
ok "the start menu has it" test -e "$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Tessaly Utilities/Corvalt.lnk"

ok "a program that runs is not installed over" refused_while_running
ok "it installs into another folder" install_elsewhere
ok "the folders that it made before have gone" test ! -e "$usual_parent"
ok "a new version stays in the other folder" stays_elsewhere
ok "it uninstalls from there" uninstall_elsewhere
rmdir "$WINEPREFIX/drive_c/Elsewhere"
ok "it installs into the usual folder again" run_windows "$setup" /S

folder="$installed"
code=0
run_windows "$folder\\corvaltc.exe" repair --sections 3 --yes >"$work/out" 2>"$work/err" || code=$?
ok "the installed program repairs" test $((code < 2)) = 1
backups=$(run_windows "$folder\\corvaltc.exe" backups | wc -l)
ok "its backup is listed" test "$backups" = 1
ok "its changes are logged" test -n "$(find "$WINEPREFIX/drive_c/users" -path '*Backups/*' -name '[0-9]*.log' -size +0)"
echo kept >"$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt/mine.txt"
for name in $(run_windows "$folder\\corvaltc.exe" backups | cut -f 1); do
  ok "its backup is restored" run_windows "$folder\\corvaltc.exe" restore "$name"
done

ok "it uninstalls silently" uninstall
ok "a file of the user's stays" test -e "$WINEPREFIX/drive_c/Program Files/Tessaly Utilities/Corvalt/mine.txt"
rm -r "$WINEPREFIX/drive_c/Program Files/Tessaly Utilities"
ok "the backup stays" test -n "$(find "$WINEPREFIX/drive_c/users" -path '*Backups/*' -name '[0-9]*' -not -name '*.log')"

backup_folder=$(dirname "$(find "$WINEPREFIX/drive_c/users" -path '*/Tessaly Utilities/Backups/index.ini')")
own_backups() {
  find "$backup_folder" -name '[0-9]*' -not -name '46000*'
}
is_missing() {
  ! "$@"
}
suite='HKCU\Software\TessalySoft\Tessaly Utilities'
printf '[46000]\r\nType=29001\r\n29601=more\r\n' >"$work/othersection"
cat "$work/othersection" >>"$backup_folder/index.ini"
touch "$backup_folder"/{46000,46000.log,more}
ok "it installs again" run_windows "$setup" /S
ok "there is something to purge" test -n "$(own_backups)"
# In place, so that it ends with a code. The uninstaller knows "_?=" only without quotes around it, which an argument
# with blanks would get here.
purge_in_place() {
  printf '@echo off\r\nstart /wait "" "%s" /S /PURGE _?=%s\r\nexit %%errorlevel%%\r\n' \
    "$installed\\uninstall.exe" "$installed" >"$work/purge.bat"
  run_windows cmd /c "Z:$work/purge.bat"
}
mv "$backup_folder/index.ini" "$work/index.ini"
mkdir "$backup_folder/index.ini"
program_files >"$work/installed"
own_backups >"$work/backups"
code=0
purge_in_place || code=$?
ok "one whose backups can't be purged says so" answered 2
program_files >"$work/still"
ok "and stays installed" diff "$work/installed" "$work/still"
ok "Apps lists it still" apps_value DisplayVersion "$version"
ok "the start menu has it still" test -e "$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Tessaly Utilities/Corvalt.lnk"
own_backups >"$work/kept"
ok "the backups are there still" diff "$work/backups" "$work/kept"
ok "so are the settings" run_windows reg query "$suite\\Corvalt"
rmdir "$backup_folder/index.ini"
mv "$work/index.ini" "$backup_folder/index.ini"
ok "it uninstalls with what it has stored" uninstall /PURGE
ok "its backups and logs have gone" test -z "$(own_backups)"
ok "another module's files stay" ls "$backup_folder"/{46000,46000.log,more}
ok "another module's section stays alone" diff "$work/othersection" "$backup_folder/index.ini"
ok "its key has gone" is_missing run_windows reg query "$suite\\Corvalt"
ok "the suite's settings stay" run_windows reg query "$suite\\Settings"
files "$work/files.after"
ok "nothing else of it is left on the disk" same_files "$work/files.before" "$work/files.after"
dump "$work/dump.after"
# Wine's own: the colours of its console, when the uninstaller runs a console program, its settings, and the devices and
# counters below System, where the uninstaller also notes the copy of itself that the next start deletes.
sed -i -E '/^(HKCU\\Console|HKCU\\Software\\Wine|HKLM\\System\\)/d' "$work"/dump.{before,after}
ok "nothing else of it is left in the registry" same_registry "$work/dump.before" "$work/dump.after"

echo "$passed passed, $failed failed"
exit $((failed > 0))
