# What the tests of plxutil share. They drive the built tool as a user does.
#   PLXUTIL         the program
#   PLX_EMULATOR    what runs it on another machine (empty here)
set -uo pipefail
shopt -s nullglob
read -ra emulator <<<"${PLX_EMULATOR:-}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
checks=0 failures=0

plx() { "${emulator[@]}" "$PLXUTIL" "$@"; }

fail() {
  printf 'FAILED: %s\n' "$*"
  failures=$((failures + 1))
}

# expect CODE PATTERN COMMAND...: the command ends with CODE, and what it prints on both streams
# matches the extended regular expression. Standard input is passed on.
expect() {
  local code=$1 pattern=$2 got=0 output
  shift 2
  output=$("$@" 2>&1) || got=$?
  checks=$((checks + 1))
  [ "$got" -eq "$code" ] || fail "$* : exit code $got instead of $code: $output"
  grep -qzE -- "$pattern" <<<"$output" || fail "$* : no '$pattern' in: $output"
}

# same WHAT A B: two texts are equal.
same() {
  checks=$((checks + 1))
  [ "$2" = "$3" ] || fail "$1: '$2' is not '$3'"
}

finish() {
  printf '%d checks, %d failed\n' "$checks" "$failures"
  [ "$checks" -gt 0 ] && [ "$failures" -eq 0 ]
  exit
}
