#!/usr/bin/env bash
# The debugging twin in front of a host: same results, every refusal in the log with its sizes, no
# contents; and the unused rest of destinations filled when asked for.
#   twin_test.sh TWIN HOST [OTHER-HOST...]
. "$(dirname "$0")/lib.sh"
twin=$1 host=$2
shift 2
log=$work/log

# with_twin COMMAND...: the command with the twin preloaded, here or in the emulated machine.
with_twin() {
  if [ ${#emulator[@]} -gt 0 ]; then
    "${emulator[@]}" -E LD_PRELOAD="$twin" -E PLX_DEBUG_LOG="$log" -E PLX_DEBUG_FILL="${fill:-}" "$@"
  else
    LD_PRELOAD=$twin PLX_DEBUG_LOG=$log PLX_DEBUG_FILL=${fill:-} "$@"
  fi
}

for what in provoke succeed; do
  same "results of '$what' under the twin" "$(with_twin "$host" $what)" \
    "$("${emulator[@]}" "$host" $what)"
done
while read -r line; do
  checks=$((checks + 1))
  grep -qE "^plxutility: $line, caller 0x[0-9a-f]+ .*\(.*$(basename "$host")\)$" "$log" ||
    fail "no '$line' in the log: $(cat "$log")"
done <<'LINES'
memcpy_s refused: ERANGE_CLEARED, destMax=16, count=20
memset_s refused: EINVAL, destMax=4, count=4
strcpy_s refused: ERANGE_CLEARED, destMax=4
strcat_s refused: ERANGE, destMax=0
sprintf_s refused: -1, destMax=16
sscanf_s refused: -1
PLX_malloc refused: null, size=0
PLX_ParseJsonString refused: null, length=3
PLX_b64_decode refused: 0, inLen=5
CCipher::deriveKey refused: 0, passLen=8, saltLen=8, keyLen=0
PLX_array_append refused: -1
PLX_array_insert refused: -1, index=1
PLX_array_modify refused: -1, index=-1
PLX_array_preAppend refused: -1, n=5
PLX_array_move refused: -1, from=0, to=3
PLX_hashtable_create refused: null, bucketCount=7
PLX_hashtable_insert refused: -1
PLX_bufList_init refused: null, bufNum=0, bufSize=8
PLX_bufList_push_back refused: -1, len=8
PLX_bufList_getUseableBuf refused: -2
PLX_bufList_push_back refused: -3, len=9
PLX_bufList_pop_front refused: -1
LINES
same "lines of the log" "$(wc -l <"$log")" 22
checks=$((checks + 1))
grep -qE 'too long|seventeen|Zm9v|a secret|element' "$log" && fail "the log holds contents"

filled=$(fill=1 with_twin "$host" succeed)
rest() { printf ' fe%.0s' $(seq "$1"); }
expect 0 "memcpy_s 0 61 62 63 00$(rest 12)" echo "$filled"
expect 0 "strcpy_s 0 61 62 63 64 00$(rest 11)" echo "$filled"
expect 0 "sprintf_s 2 34 32 00$(rest 13)" echo "$filled"

# The test programs that link the shared library pass as they do without the twin, with and without
# the fill, and the log holds the refusals that they provoke.
refusals() { grep -c "plxutility: $1 refused" "$log"; }
for other in "$@"; do
  for fill in '' 1; do
    : >"$log"
    checks=$((checks + 1))
    with_twin "$other" --gtest_brief=1 >"$work/other" 2>&1 ||
      fail "$other, fill '$fill': $(tail -30 "$work/other")"
    case ${other##*/} in
      cpp_header_test) # every capacity below the least, for 1 to 100 bytes: 4 * ceil(n / 3) + 1 ...
        same "refusals of the one encoder" "$(refusals PLX_b64_encode)" 6968
        same "refusals of the other" "$(refusals PLX_base64UrlEncoder)" 6867
        checks=$((checks + 1))
        grep -q 'PLX_b64_encode refused: 0, inLen=100, outSize=136,' "$log" || fail "the last of them"
        ;;
      cipher_host_test) same "unknown names" "$(refusals getIndexValueSetByName)" 1 ;;
    esac
  done
done
finish
