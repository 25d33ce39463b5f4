#!/usr/bin/env bash
# Shows that hardening.sh can fail: a library built the soft way has to be told of every property.
#   hardening_sees.sh COMPILER READELF WORK
set -euo pipefail
here=$(dirname "$0") compiler=$1 readelf=$2 work=$3
mkdir -p "$work"
cat >"$work/soft.cc" <<'SOURCE'
#include <cstdlib>
#include <cstring>
int g_started = std::rand();
int* g_where = &g_started;
extern "C" void soft(const char* text) { char copy[64]; std::strcpy(copy, text); std::system(copy); }
SOURCE
"$compiler" -g -O2 -fPIC -shared -fno-stack-protector -U_FORTIFY_SOURCE "$work/soft.cc" \
  -o "$work/soft.so" -Wl,-z,lazy -Wl,-z,norelro -Wl,-z,execstack -Wl,-rpath,/nowhere
answer=$("$here/hardening.sh" "$work/soft.so" "$readelf" fortified) && {
  echo "the soft library passed"
  exit 1
}
for property in 'soname' 'RELRO' 'immediate binding' 'executable stack' 'search path' \
  'stack protector' "compiler's alone" 'global constructor' 'FORTIFY' 'stack-clash'; do
  grep -q -- "$property" <<<"$answer" || { echo "not seen: $property"; exit 1; }
done
