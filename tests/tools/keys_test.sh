#!/usr/bin/env bash
# Key files: made, kept, replaced, checked, broken in every way, rotated and rotated back.
. "$(dirname "$0")/lib.sh"
cd "$work" || exit 1

names=(encrypt_stb_key aes_prefix_key whitelist_key pvr_file_key epg_profile_key)
check() { plx keys check --root box --stb-id STB-1 "$@"; }
provision() { plx keys provision --root box --stb-id STB-1 "$@"; }
provision_p() { provision --key aes_prefix_key "$@"; }
f=box/system/etc/security/i/p/f
w=box/system/etc/security/i/p/w

# Made once, then kept; modes; nothing left beside them.
expect 0 'aes_prefix_key +written' provision
for name in "${names[@]}"; do expect 0 "$name +loads" check; done
before=$(cat $f $w)
expect 0 'aes_prefix_key +kept' provision
same "kept files" "$(cat $f $w)" "$before"
same "their mode" "$(stat -c %a $f $w | tr '\n' ' ')" "600 600 "
same "no other file" "$(find box -type f | wc -l)" 10
expect 0 'written' provision_p --force --mode 0644
[ "$(cat $f $w)" != "$before" ] || fail "--force keeps the files"
same "the mode asked for" "$(stat -c %a $f)" 644
if [ "$(id -u)" -eq 0 ]; then
  provision_p --force --owner 1000:1001 >/dev/null
  same "the owner asked for" "$(stat -c %u:%g $f $w | tr '\n' ' ')" "1000:1001 1000:1001 "
fi
# The box identifier counts for one key. A wrong key opens one file in 256 by chance, so these are
# always the same.
printf '0123456789abcdef' >factor
printf 'fedcba9876543210' >iv
printf 'my work key' >work-key
known=(--force --factor factor --iv iv --work-key work-key)
for name in "${names[@]}"; do provision "${known[@]}" --key $name >/dev/null; done
expect 1 '1 of 5 keys do not load' plx keys check --root box --stb-id STB-2
expect 1 'epg_profile_key +fails.*no box identifier was given' plx keys check --root box

# Given secrets give the same files, which openssl opens.
same "the factor file" "$(openssl base64 -d -A -in $f)" 0123456789abcdef
same "the IV in front" "$(openssl base64 -d -in $w | head -c 16)" fedcba9876543210
once=$(cat $f $w)
printf 'my work key\r\n' | provision_p --force --factor factor --iv iv --work-key - >/dev/null
same "the same secrets again" "$(cat $f $w)" "$once"
expect 0 'aes_prefix_key +loads  11 characters' check --key aes_prefix_key
checks=$((checks + 1))
check | grep -qE 'my work key|0123456789abcdef|fedcba' && fail "check prints a secret"

# One file missing.
rm $f
expect 1 'not the factor file that opens it' provision_p
[ -e $f ] && fail "a factor file that opens nothing"
expect 0 'factor file written, work-key file kept' provision_p --factor factor
rm $w
expect 0 'work-key file written, factor file kept' provision_p --work-key work-key

# Work keys that their readers cannot take.
head -c 256 /dev/zero | tr '\0' k >too-long
printf 'a\0b' >with-nul
expect 2 '256 characters.*at most 255' provision_p --force --work-key too-long
expect 2 'zero byte' provision_p --force --work-key with-nul
expect 0 'written' provision --force --key encrypt_stb_key --work-key too-long
expect 2 'holds no work key' provision_p --force --work-key /dev/null

# Broken in every way: how | what check says.
provision_p "${known[@]}" >/dev/null
good_f=$(cat $f) good_w=$(cat $w)
while IFS=@ read -r how pattern; do
  [ -n "$how" ] || continue
  rm -rf $f $w
  printf '%s\n' "$good_f" >$f
  printf '%s\n' "$good_w" >$w
  eval "$how"
  expect 1 "aes_prefix_key +fails +$(sed 's/^ *//' <<<"$pattern")" check --key aes_prefix_key
  expect 1 '"loads": false' check --key aes_prefix_key --json
done <<'TABLE'
rm $f @ [^ ]*/p/f: missing
rm $w @ [^ ]*/p/w: missing
rm -r box/system/etc/security/i/p; mkdir -p box/system/etc/security/i/p @ [^ ]*/p/f: missing
: >$f @ [^ ]*/p/f: empty
: >$w @ [^ ]*/p/w: empty
rm $f; mkdir $f @ [^ ]*/p/f: no file \(it is a folder
rm $w; mkdir $w @ [^ ]*/p/w: no file \(it is a folder
rm $f; mkfifo $f @ [^ ]*/p/f: no file \(it is no regular
rm $w; mkfifo $w @ [^ ]*/p/w: no file \(it is no regular
echo 'AAAA*AAA' >$f @ [^ ]*/p/f: not Base64 \(the byte '\*' at byte 4
sed -i 's/^..../&%/' $w @ [^ ]*/p/w: not Base64 \(the byte '%' at byte 4
printf %s "${good_w:0:30}" >$w @ [^ ]*/p/w: not Base64 \(the end of an unfinished group
echo AAAA >$w @ [^ ]*/p/w: too short \(3 bytes decoded
head -c 16 iv | openssl base64 >$w @ [^ ]*/p/w: wrong length \(0 bytes of cipher text
head -c 40 /dev/zero | openssl base64 >$w @ [^ ]*/p/w: wrong length \(24 bytes of cipher text
openssl base64 -in iv >$f @ [^ ]*/p/w: does not open
cp box/system/etc/security/i/c/w $w @ [^ ]*/p/w: (too long|does not open)
head -c 10485760 /dev/zero | base64 -w 0 >$w @ [^ ]*/p/w: too long
TABLE

# Loads, but perhaps not as meant.
printf '%s\n' "$good_w" >$w
head -c 20 /dev/zero | openssl base64 >$f
rm $w
provision_p --work-key work-key >/dev/null
expect 0 'loads.*decodes to 20 bytes, so that the factor counts as zeros' check --key aes_prefix_key
rm -r box
head -c 28 /dev/zero | tr '\0' k >long-prefix
provision_p --work-key long-prefix >/dev/null
expect 0 'loads.*first byte is zero' check --key aes_prefix_key

# Rotated, undone, undone again, discarded.
key_of() { # what a request is encrypted with
  plx request encrypt --root box <<<'{"cipherSize":128,"paddingMode":"","plainText":"sixteen letters." }'
}
rm -r box && provision_p --work-key work-key --mode 0640 >/dev/null
first=$(key_of)
expect 0 'new work key; the old one is .*/p/w\.old' plx keys rotate --root box --key aes_prefix_key
second=$(key_of)
[ "$first" != "$second" ] || fail "rotation changes nothing"
same "mode after rotation" "$(stat -c %a $w)" 640
expect 0 'old work key is back' plx keys rotate --root box --key aes_prefix_key --undo
same "after undo" "$(key_of)" "$first"
plx keys rotate --root box --key aes_prefix_key --undo >/dev/null
same "after a second undo" "$(key_of)" "$second"
expect 0 'is gone' plx keys rotate --root box --key aes_prefix_key --discard-old
expect 1 'there is no .*w.old' plx keys rotate --root box --key aes_prefix_key --undo
same "after discarding" "$(key_of)" "$second"
same "files after rotations" "$(find box -type f | wc -l)" 2
while check --key aes_prefix_key >/dev/null; do openssl rand -base64 16 >$f; done
expect 1 'old work key does not load; nothing was changed' \
  plx keys rotate --root box --key aes_prefix_key
finish
