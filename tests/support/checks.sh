# Sourced by scripts that count checks. Expects the variable work, a folder of the script's own.

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
