#!/usr/bin/env bash
# Lists of digests go to the coreutils and come back; keyed digests are openssl's.
. "$(dirname "$0")/lib.sh"
cd "$work" || exit 1

printf abc >plain
printf x >' leading space'
printf y >'back\slash'
printf z >$'line\nend'
: >empty
head -c 5000000 /dev/urandom >long # longer than md5 takes in one buffer

for algorithm in sha256 md5; do
  files=(plain empty long 'back\slash' $'line\nend' ' leading space')
  plx digest $algorithm -- "${files[@]}" >list
  expect 0 'long: OK' ${algorithm}sum -c list
  expect 0 'long: OK' plx digest $algorithm --check list
  same "$algorithm lists" "$(plx digest $algorithm "${files[@]}")" \
    "$(${algorithm}sum "${files[@]}")"
  ${algorithm}sum --tag plain long >tagged
  ${algorithm}sum -b "${files[@]}" >binary
  ${algorithm}sum "${files[@]}" | sed 's/$/\r/' >dos
  (printf '# a comment\n' && ${algorithm}sum plain | sed 's/^[^ ]*/\U&/') >capitals
  for list in tagged binary capitals; do
    expect 0 'plain: OK' plx digest $algorithm --check $list
    expect 0 '^.?$' plx digest $algorithm --check --quiet $list
  done
  expect 0 'empty: OK' plx digest $algorithm -c dos
  same "$algorithm of a pipe" "$(plx digest $algorithm <long | cut -d' ' -f1)" \
    "$(${algorithm}sum <long | cut -d' ' -f1)"
  printf changed >>plain
  expect 1 'plain: FAILED' plx digest $algorithm -c tagged
  expect 1 '1 of 2 digests differ' plx digest $algorithm -c tagged
  printf abc >plain
  sed 's/long/gone/' tagged >missing
  expect 1 'gone: FAILED open or read' plx digest $algorithm -c missing
  printf 'no line\n' >>tagged
  expect 0 '1 of 3 lines are no line' plx digest $algorithm -c tagged
done

printf 'key of a message' >key
printf '%s' "$(xxd -p key)" >key.hex
openssl_hmac() { openssl dgst -$1 -hmac "$(cat key)" plain | sed 's/.*= //'; }
for file in "--key-file key" "--key-file key.hex --hex"; do
  # shellcheck disable=SC2086 # the options are words
  same "hmac, $file" "$(plx digest hmac $file plain | cut -d' ' -f1)" "$(openssl_hmac sha256)"
  # shellcheck disable=SC2086
  same "stun, $file" "$(plx digest stun $file plain | cut -d' ' -f1)" "$(openssl_hmac sha1)"
done
finish
