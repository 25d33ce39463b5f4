#!/usr/bin/env bash
# A fleet: shards against the undivided run, bad rows, runs that are stopped, what cannot be written,
# and memory that does not grow with the list.
. "$(dirname "$0")/lib.sh"
cd "$work" || exit 1
boxes=${PLX_FLEET_BOXES:-60}

printf '0123456789abcdef' >factor
printf 'fedcba9876543210' >iv
printf 'one work key' >work-key
mkdir keys && printf 'key of box 7' >keys/7
{
  echo 'model,stb_id,work_key_file'
  for ((i = 1; i <= boxes; i++)); do
    [ $i -eq 7 ] && echo "m1,BOX-$i,keys/7" || echo "m1,\"BOX-$i\","
  done
} >devices.csv
fixed=(--factor factor --iv iv --work-key work-key)
fleet() { plx keys provision --devices devices.csv "$@"; }

# The undivided run. What it makes loads, and the manifest holds.
expect 0 "$boxes rows: $boxes boxes made, 0 there before, 0 bad" fleet --out whole --jobs 2 "${fixed[@]}"
same "lines of the manifest" "$(grep -vc '^#' whole/manifest)" $((8 + 2 * boxes))
same "the fingerprint" "$(grep '^#' whole/manifest)" "# $(cat whole/fleet)"
expect 0 '' sh -c 'cd whole && sha256sum --quiet -c manifest'
same "nothing else is left" "$(ls -A whole | tr '\n' ' ')" "boxes fleet manifest shared "
cp -r whole/shared image && mkdir -p image/data/security/i && cp -r whole/boxes/BOX-7 image/data/security/i/u
expect 0 'epg_profile_key +loads  12 char' plx keys check --root image --stb-id BOX-7
expect 1 'epg_profile_key +fails' plx keys check --root image --stb-id BOX-8
checks=$((checks + 1))
grep -rqE 'work key|key of box|0123456789abcdef' whole && fail "a secret in the clear"
expect 0 "0 boxes made, $boxes there before" fleet --out whole "${fixed[@]}"
same "the manifest of a second run" "$(sort whole/manifest | sha256sum)" \
  "$(sort whole/manifest | sha256sum)"

# Four shards, by a scheduler that knows nothing of them; their manifests join.
if [ -z "${PLX_EMULATOR:-}" ] && command -v parallel >/dev/null; then
  export PLXUTIL
  parallel --will-cite -j2 "\"\$PLXUTIL\" keys provision --devices devices.csv --out parts \
    ${fixed[*]} --shard {}/4" ::: 1 2 3 4 >shards.log 2>&1 || fail "parallel: $(cat shards.log)"
else
  for shard in 4 2 3 1; do fleet --out parts "${fixed[@]}" --shard $shard/4 >/dev/null; done
fi
expect 0 '' diff -r --exclude 'manifest*' whole parts
same "the joined manifests" "$(cat parts/manifest-*-of-4 | sort -u)" "$(sort whole/manifest)"

# Bad rows are told with their numbers, and the others are done.
long=$(head -c 64 /dev/zero | tr '\0' x)
printf 'stb_id,work_key_file\nA,\nB,\nA,\n%s,\n,\n../C,\nD,keys/none\n"E,\nF\r\n\nB,\n' "$long" >bad.csv
expect 1 '7 of 10 rows are bad; all others are done' \
  plx keys provision --devices bad.csv --out bad --jobs 3
plx keys provision --devices bad.csv --out bad >log 2>&1
for line in "row 4: 'A' was given by row 2" 'row 5: an identifier of 64 bytes' 'row 6: no identifier' \
  "row 7: an identifier that begins with '.'" 'row 8: .*keys/none: no such file' \
  'row 9: a quote' "row 12: 'B' was given by row 3"; do
  expect 0 '' grep -E "$line" log
done
same "boxes of the good rows" "$(ls bad/boxes | tr '\n' ' ')" "A B F "
rm bad/boxes/A/w
expect 1 "row 2: bad/boxes/A is there without both of its files" \
  plx keys provision --devices bad.csv --out bad

# Wrong uses, and a folder begun with other secrets.
printf 'id\nA\n' >no-column.csv
expect 2 "no column 'stb_id'" plx keys provision --devices no-column.csv --out x
expect 2 'cannot come from standard input' plx keys provision --devices - --out x
expect 2 'no shard' fleet --out x --shard 5/4
expect 2 'for one box' fleet --out x --stb-id A
expect 2 'excludes' fleet --out x --force
sed 's/secrets ./secrets x/' whole/fleet >parts/fleet
expect 1 'made with other secrets' fleet --out parts
printf x >a-file
expect 3 'a-file' fleet --out a-file/below

# Stopped at any moment, killed without warning, a run goes on where it was: nothing half-written
# bears a final name, and in the end all is as if it had not been stopped.
if [ -z "${PLX_EMULATOR:-}" ]; then
  for ((i = 0; i < 10; i++)); do
    fleet --out killed --jobs 2 "${fixed[@]}" >/dev/null 2>&1 &
    pid=$!
    sleep "0.0$((RANDOM % 8 + 1))"
    kill -9 $pid 2>/dev/null
    wait $pid 2>/dev/null
    for box in killed/boxes/*/; do
      cmp -s "$box/f" "whole/boxes/$(basename "$box")/f" &&
        cmp -s "$box/w" "whole/boxes/$(basename "$box")/w" || fail "half-written: $box"
    done
    checks=$((checks + 1))
  done
  # The workers of the last run end with it, sooner or later.
  for ((i = 0; i < 100; i++)); do
    fleet --out killed --jobs 2 "${fixed[@]}" >/dev/null 2>&1 && break
    sleep 0.1
  done
  expect 0 "$boxes rows" fleet --out killed --jobs 2 "${fixed[@]}"
  expect 0 '' diff -r -x manifest whole killed
  same "the manifest after kills" "$(sort killed/manifest)" "$(sort whole/manifest)"

  # Two runs of the same work.
  mkdir -p busy/.work && (
    exec 9>busy/.work/lock
    flock 9
    expect 3 'another run of the same work is going on' fleet --out busy
    exit $failures
  ) || fail "two runs at once"
fi

# A full disk and a folder that cannot be written, where this machine lets us make them.
if [ "$(id -u)" -eq 0 ] && mkdir disk && mount -t tmpfs -o size=256k none disk 2>/dev/null; then
  expect 3 'no space left.*the same command' fleet --out disk/out "${fixed[@]}"
  mount -o remount,size=64m disk
  expect 0 "$boxes rows" fleet --out disk/out "${fixed[@]}"
  expect 0 '' diff -r -x manifest whole disk/out
  mount -o remount,ro disk
  rm -rf parts
  expect 3 'read-only file system' fleet --out disk/other
  umount disk
fi

# Memory does not grow with the list; a sanitizer's own does.
if [ -z "${PLX_EMULATOR:-}${PLX_SANITIZE:-}" ] && [ -x /usr/bin/time ]; then
  peak() {
    seq -f 'STB-%08.0f' 1 "$1" | sed '1i stb_id' >list.csv
    /usr/bin/time -f %M "$PLXUTIL" keys provision --devices list.csv --out none --dry-run 2>&1 >/dev/null
  }
  small=$(peak 1000) large=$(peak 50000)
  checks=$((checks + 1))
  [ "$large" -le $((small + small / 4)) ] || fail "memory grows: $small KiB, then $large KiB"
fi
finish
