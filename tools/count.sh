# Sourced by ./test: runs checks, keeps their output in build/logs/, prints a line for each, and counts.

passed=0
failed=0
log_folder=build/logs
mkdir -p "$log_folder"

# run_logged NAME COMMAND...: sets exit_code, log and seconds.
run_logged() {
  local name=$1 begin=$SECONDS
  shift
  log=$log_folder/$name.log
  exit_code=0
  "$@" >"$log" 2>&1 </dev/null || exit_code=$?
  seconds=$((SECONDS - begin))
}

# report NAME PASSED FAILED [REMARK]: counts, prints, and shows the end of the log of what failed.
report() {
  passed=$((passed + $2))
  failed=$((failed + $3))
  if (($3 == 0)); then
    printf 'ok    %-24s %5d passed  %4d s  %s\n' "$1" "$2" "$seconds" "${4:-}"
  else
    printf 'FAIL  %-24s %5d passed, %d failed  %4d s  %s\n' "$1" "$2" "$3" "$seconds" "${4:-}"
    grep -aE 'error:|FAILED|Failure$|ERROR:|runtime error|faults?:' "$log" | head -n 20 | sed 's/^/      /' || true
    tail -n 15 "$log" | sed 's/^/    | /'
    echo "    The whole output is in $log"
  fi
}

# check NAME COMMAND...: one check, passed when the command succeeds.
check() {
  run_logged "$@"
  if ((exit_code == 0)); then
    report "$1" 1 0
  else
    report "$1" 0 1 "exit code $exit_code"
  fi
}

# last_number LOG EXPRESSION: the number that the expression captures last (a test may run its own program for a child),
# else 0.
last_number() {
  local number
  number=$(tr -d '\r' <"$1" | sed -nE "s/$2/\\1/p" | tail -n 1)
  echo "${number:-0}"
}

# count_tests NAME COMMAND...: a GoogleTest program. Without its summary it counts as failed whatever it answers: a
# program that crashes half-way says nothing, and a 32-bit one under a 64-bit Wine does nothing and answers 0.
count_tests() {
  run_logged "$@"
  local ran good bad skipped remark=
  ran=$(last_number "$log" '^\[==========\] ([0-9]+) tests? from .* ran\..*')
  good=$(last_number "$log" '^\[  PASSED  \] ([0-9]+) tests?\..*')
  bad=$(last_number "$log" '^\[  FAILED  \] ([0-9]+) tests?, listed below:.*')
  skipped=$(last_number "$log" '^\[  SKIPPED \] ([0-9]+) tests?, listed below:.*')
  if ((ran == 0)); then
    good=$(tr -d '\r' <"$log" | grep -acE '^\[       OK \]' || true)
    bad=$((bad + 1))
    remark="ended without a summary, exit code $exit_code"
  elif ((good + bad + skipped != ran || (exit_code != 0 && bad == 0))); then
    bad=$((bad + 1))
    remark="$ran tests ran, exit code $exit_code"
  fi
  if ((skipped > 0)); then
    remark+=" $skipped skipped"
  fi
  report "$1" "$good" "$bad" "$remark"
}

# count_python NAME COMMAND...: a Python unittest program.
count_python() {
  run_logged "$@"
  local ran bad errors
  ran=$(last_number "$log" '^Ran ([0-9]+) tests?.*')
  bad=$(last_number "$log" '^FAILED \(.*failures=([0-9]+).*')
  errors=$(last_number "$log" '^FAILED \(.*errors=([0-9]+).*')
  bad=$((bad + errors))
  if (((ran == 0 || exit_code != 0) && bad == 0)); then
    bad=1
  fi
  report "$1" "$((ran > bad ? ran - bad : 0))" "$bad"
}

# count_script NAME COMMAND...: a script whose last line says "N passed, N failed".
count_script() {
  run_logged "$@"
  local counts good bad
  counts=$(tail -n 1 "$log" | tr -d '\r' | sed -nE 's/^([0-9]+) passed, ([0-9]+) failed$/\1 \2/p')
  read -r good bad <<<"${counts:-0 0}"
  if ((bad == 0 && (exit_code != 0 || good == 0))); then
    bad=1
  fi
  report "$1" "$good" "$bad"
}
