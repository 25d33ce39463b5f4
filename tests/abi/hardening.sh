#!/usr/bin/env bash
# Reads off a built library what the loader and an attacker would meet.
#   hardening.sh LIBRARY READELF [fortified]
# Prints one line for each property that is missing and fails if there is one.
set -euo pipefail
export LC_ALL=C
library=$1 readelf=$2 fortified=${3:-}

missing=0
want() { # want NAME COMMAND...: the command has to succeed
  local name=$1
  shift
  if ! "$@"; then
    echo "missing: $name"
    missing=1
  fi
}
unwanted() { local name=$1; shift; want "no $name" eval "! $(printf '%q ' "$@")"; }
has() { grep -qE -- "$1" <<<"$2"; }

dynamic=$("$readelf" -dW "$library")
segments=$("$readelf" -lW "$library")
sections=$("$readelf" -SW "$library")
symbols=$("$readelf" -sW "$library")

want "soname libplxutility.so" has 'SONAME.*\[libplxutility\.so\]' "$dynamic"
want "relocations read-only after loading (RELRO)" has 'GNU_RELRO' "$segments"
want "immediate binding" has 'BIND_NOW|FLAGS_1.*NOW' "$dynamic"
want "a stack segment" has 'GNU_STACK' "$segments"
unwanted "executable stack" has 'GNU_STACK.*RWE' "$segments"
unwanted "segment both writable and executable" has '^ *LOAD.*RWE' "$segments"
unwanted "text relocations" has 'TEXTREL' "$dynamic"
unwanted "search path in the file" has '\((RPATH|RUNPATH)\)' "$dynamic"
want "stack protector" has '__stack_chk_fail' "$symbols"

# Of load-time code only the compiler's own frame_dummy: one entry, and no constructor of ours.
pointer=8
has 'ELF32' "$("$readelf" -h "$library")" && pointer=4
array=$(sed -nE 's/.* \.init_array +INIT_ARRAY +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+) .*/\1/p' <<<"$sections")
want "load-time code of the compiler's alone" test $((16#${array:-0})) -le "$pointer"
unwanted "global constructor" has '_GLOBAL__(sub_)?I_' "$symbols"
unwanted "constructor table" has ' \.ctors ' "$sections"

if [ "$fortified" = fortified ]; then
  want "a checked C library call (_FORTIFY_SOURCE)" has '__[a-z]+_chk(@|$)' \
    "$(grep -v __stack_chk <<<"$symbols" | sed 's/ ([0-9]*)$//')"
  # gcc records its options beside the debug information: one producer for each source file.
  if has ' \.debug_info ' "$sections"; then
    producers=$("$readelf" --debug-dump=info "$library" 2>/dev/null | grep 'DW_AT_producer.*GNU C' || true)
    for option in -fstack-clash-protection -fstack-protector-strong; do
      unwanted "source compiled without $option" has 'GNU C' "$(grep -v -- "$option" <<<"$producers" || true)"
    done
    want "the compiler's record of its options" has 'GNU C' "$producers"
  fi
fi
exit "$missing"
