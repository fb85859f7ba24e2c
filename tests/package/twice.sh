#!/usr/bin/env bash
# Makes the packages of the last commit twice, in folders of different names and lengths and with nothing that the second
# could take over from the first: the same commit gives the same bytes. Ends with "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/../.."

top=$PWD
work=$PWD/build/package-twice
rm -rf "$work"
mkdir -p "$work"
source tests/support/checks.sh

# The sources of pugixml come from Debian's archive once; they are compared with a fixed hash each time.
build() {
  git clone -q "$top" "$work/$1"
  mkdir -p "$work/$1/build"
  cp -a build/_sources "$work/$1/build/"
  (cd "$work/$1" && CCACHE_DISABLE=1 ./package) >"$work/$2.log" 2>&1 || {
    tail -n 30 "$work/$2.log"
    return 1
  }
  # What is packed, and what stands beside it.
  (cd "$work/$1/build/package" && find . -type f -not -name build.log -print0 | sort -z | xargs -0 sha256sum) >"$work/$2"
}

ok "the packages are made" build first first.sums
ok "they are made again elsewhere" build "another folder/of a longer name" second.sums
ok "every file has the same bytes" diff "$work/first.sums" "$work/second.sums"
cat "$work/first/build/package/SHA256SUMS"

echo "$passed passed, $failed failed"
exit $((failed > 0))
