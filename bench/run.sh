#!/usr/bin/env bash
# Runs every benchmark and prints its ratios; README.md says what they are. Programs and registry server of Wine share
# one core, and nothing else should run meanwhile.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine.sh
trap stop_wine EXIT

tools/install build wine >/dev/null
# The benchmarks alone, by the names of their sources.
targets() {
  local source
  for source in "$@"; do
    if [[ -e $source ]]; then
      echo "bench_$(basename "$source" .cpp)"
    fi
  done
}

native=$(targets bench/*.cpp bench/native/*.cpp)
windows=$(targets bench/*.cpp bench/windows/*.cpp)
for name in $native; do
  tools/build native-release "$name" >/dev/null
  echo "## $name, Linux"
  taskset -c "$wine_core" "build/native-release/bench/$name"
done

start_display
start_fresh_wine "$PWD/build/wine"
for name in $windows; do
  tools/build windows-x64 "$name" >/dev/null
  echo "## $name, Wine"
  run_windows "build/windows-x64/bench/$name.exe" | tr -d '\r'
done
