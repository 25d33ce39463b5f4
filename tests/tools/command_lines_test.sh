#!/usr/bin/env bash
# Command lines, each with its exit code and what it prints. Wrong uses included.
. "$(dirname "$0")/lib.sh"
cd "$work" || exit 1

printf 'twelve-chars' >text
printf '0123456789abcdef' >key16
printf '30313233343536373839616263646566\n' >key16.hex
printf 'the thirty-two bytes of one key.' >key32
printf '0123456789ABCDEF 23456789ABCDEF01 456789ABCDEF0123' >des.keys
printf '0123456789abcdef0123456789abcdef' >des.two
printf '{"a":{"b":[1,2]},"b":"x\\ny", "n":" 12 apples", "t":"Trueish"}' >good.json
printf '{"a":1,\n "a":2}' >bad.json
mkdir folder box

# exit code | standard input | arguments | what is printed
while IFS='|' read -r code input arguments pattern; do
  [[ $code =~ ^[0-9] ]] || continue
  eval "set -- $arguments"
  expect "$((code))" "$(sed 's/^ *//' <<<"$pattern")" plx "$@" < <(eval "printf -- $input")
done <<'TABLE'
0 | ''  | --help                                        | keys.*request.*Exit codes: 0 done
0 | ''  | --version                                     | ^plxutil 1\.
0 | ''  | keys --help                                   | provision
2 | ''  |                                               | subcommand is required
2 | ''  | frobnicate                                    | see 'plxutil --help'
2 | ''  | keys                                          | see 'plxutil keys --help'
2 | ''  | keys check --frob                             | see 'plxutil keys check --help'
2 | ''  | keys provision                                | --root is missing
2 | ''  | keys provision --root box                     | no identifier was given.*--stb-id
2 | ''  | keys provision --root box --key nokey         | no key is called 'nokey'.*epg_profile_key
2 | ''  | keys provision --root box --key pvr_file_key --mode 0999 | is no file mode
2 | ''  | keys provision --root box --key pvr_file_key --owner nobody-here | no user 'nobody-here'
2 | ''  | keys provision --root box --key pvr_file_key --factor text | holds 12 bytes.*16 raw bytes
2 | ''  | keys provision --root box --stb-id 0123456789012345678901234567890123456789012345678901234567890123 | identifier of 64 bytes
2 | ''  | keys provision --root box --key pvr_file_key --factor - --iv - | only one of
2 | ''  | keys provision --out x                        | devices
3 | ''  | keys provision --devices none.csv --out x     | none.csv: no such file
3 | ''  | keys check --root nowhere                     | nowhere: no such file
3 | ''  | keys check --root text                        | not a directory
1 | ''  | keys check --root box                         | 5 of 5 keys do not load
2 | ''  | keys rotate --root box                        | --key is missing
3 | ''  | keys rotate --root box --key pvr_file_key     | provision.* first
0 | ''  | keys table                                    | 4  epg_profile_key  /data/security/i/u/f
0 | ''  | keys table --root box --json                  | "work_key_file": "box/system/etc/security/i/c/w"
0 | ''  | version                                       | Orvane Secure C V100R001C01SPC004 \(0x0504\)
0 | ''  | version --json                                | "secrets": "[0-9a-f]{64}"
0 | '{"cipherSize":128,"paddingMode":"PKCS5Padding","cipherPrefix":"twelve-chars","plainText":"abc" }' | request encrypt | ^[0-9A-F]{32}.?$
1 | '{"cipherSize":192,"paddingMode":"PKCS5Padding","cipherPrefix":"twenty-characters-ok","plainText":"sixteen letters." }' | request encrypt | answers 1, but encrypted nothing
1 | '{"cipherSize":128,"paddingMode":"PKCS5Padding","cipherPrefix":"twelve-chars","cipherText":"00" }' | request decrypt | answers 1, but decrypted nothing
1 | 'no braces' | request encrypt                       | refuses the request \(result 0\)
1 | 'no braces' | request explain                       | end request +holds no
1 | '{"cipherSize":128,,}' | request explain            | does not parse: .* at byte 18
1 | '{"cipherSize":128,"paddingMode":"PKCS5Padding","plainText":"abc" }' | request explain --root box | aes_prefix_key of the key store is asked, which does not load: .*missing
1 | '{"cipherSize":192,"paddingMode":"PKCS5Padding","cipherPrefix":"twenty-characters-ok","plainText":"sixteen letters." }' | request explain | odd output .*24 bytes where 32
0 | '{"encryptMode":"CBC","cipherSize":256,"paddingMode":"PKCS5Padding","cipherPrefix":"twenty-eight-characters-here","IVPrefix":"short","plainText":"abc" }' | request explain | first byte of the key becomes zero.*5 characters, 4 of the library.s suffix, 7 zero bytes
0 | '{"encryptMode":"CBC","cipherSize":128,"paddingMode":"","cipherPrefix":"twelve-chars","IVPrefix":"abcdefghijklmnopqrst","plainText":"sixteen letters." }' | request explain --show-secret | no suffix: 6162636465666768696a6b6c6d6e6f70
3 | ''  | request encrypt nowhere.json                  | nowhere.json: no such file
2 | ''  | seal text                                     | either --key-file or --stored
2 | ''  | seal text --key-file key16 --stored epg       | either --key-file or --stored
2 | ''  | seal text --key-file key32                    | holds 32 bytes.*16 raw bytes
2 | ''  | seal text --stored both                       | see 'plxutil seal --help'
2 | 'x' | seal - --key-file -                           | cannot bring both
1 | ''  | seal text --stored stb --root box             | encrypt_stb_key does not load
1 | 'no*sealed_text' | open --key-file key16            | no sealed text: the byte '\*' at byte 2
1 | 'AAAA' | open --key-file key16                      | too short
0 | 'foo' | base64 encode                               | ^Zm9v.?$
0 | '\xfb\xff' | base64 encode --url                    | ^-_8.?$
0 | 'Zm9v\n' | base64 decode                            | ^foo.?$
0 | 'Zm\n9v\n' | base64 decode -i                       | ^foo.?$
0 | '-_8' | base64 decode --url                         | .
1 | 'Zm\n9v\n' | base64 decode                          | byte 2 .*--ignore-space
1 | '-_8=' | base64 decode                              | byte 0 .*try --url
1 | 'Zm9' | base64 decode                               | 3 characters are no whole
1 | 'Z===' | base64 decode                              | see its padding
0 | '' | base64 encode                                  | ^.?$
2 | 'x' | des3 encrypt                                  | --key-file is required
2 | 'x' | des3 encrypt --key-file text                  | neither two nor three keys
2 | 'x' | des3 decrypt --key-file des.keys --end never  | see 'plxutil des3 decrypt --help'
1 | '123' | des3 decrypt --key-file des.keys --end auto | no whole number of blocks
1 | '12345678' | des3 decrypt --key-file des.keys --end padding | does not end in padding
0 | ''  | digest sha256                                 | ^e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855  -
0 | 'abc' | digest md5 --json                           | "digest": "900150983cd24fb0d6963f7d28e17f72"
3 | ''  | digest sha256 folder text                     | text.*folder: is a directory
1 | 'nonsense\n' | digest sha256 --check                | no SHA256 line found
2 | ''  | digest sha256 --check --json text             | prints no JSON
2 | ''  | digest hmac text                              | --key-file is required
0 | ''  | json check good.json                          | good.json: valid
1 | ''  | json check bad.json                           | bad.json: line 2, column 2 \(byte 9\): a second member
1 | ''  | json check bad.json --json                    | "valid": false, "byte": 9, "line": 2
0 | ''  | json find b good.json                         | array of 2 elements
0 | ''  | json find B good.json -i --json               | ^\["1", "2"\].?$
1 | ''  | json find b good.json --as string             | first member of that name is of another kind
0 | ''  | json find n good.json --as number             | ^12.?$
0 | ''  | json find t good.json --as boolean            | ^true.?$
1 | ''  | json find none good.json                      | no 'none'
1 | ''  | json tree bad.json                            | second member
0 | ''  | json tree good.json                           | object of 4 members.*│  └─ b: array of 2
0 | '[1]\0[' | json check                               | zero byte at 3 ends the text.*valid
TABLE

# Standard output that takes nothing is reported, and so is one that is closed.
checks=$((checks + 1))
plx version >/dev/full 2>message && fail "a full output goes unnoticed"
grep -q 'standard output: no space left' message || fail "a full output: $(cat message)"

# Seals and opens, with keys in every form, and finds another key or a changed text.
for key in "key16" "key16.hex" "key32 --bits 256"; do
  # shellcheck disable=SC2086 # the options are words
  plx seal text --key-file $key >sealed
  # shellcheck disable=SC2086
  same "opened with $key" "$(plx open sealed --key-file $key)" twelve-chars
done
plx seal text --key-file key16 >sealed
same "a known text" "$(printf %s twelve-chars | plx seal --key-file key16.hex | plx open --key-file key16)" \
  twelve-chars
wrong=0
for i in 1 2 3 4 5; do # a wrong key passes the padding once in 256 times
  printf 'another key %04d' $i >other
  plx open sealed --key-file other >/dev/null 2>&1 || wrong=$((wrong + 1))
done
checks=$((checks + 1))
[ "$wrong" -ge 3 ] || fail "wrong keys go unnoticed ($wrong of 5 found)"

# Triple DES and its ends, long inputs included, with openssl as the judge.
for size in 0 5 8 16 262143 262144 262152 600000; do
  head -c $size /dev/zero | tr '\0' '\252' >plain
  plx des3 encrypt plain --key-file des.keys >cipher
  same "des3 of $size bytes grows" "$(stat -c %s cipher)" $((size / 8 * 8 + 8))
  plx des3 decrypt cipher --key-file des.keys --end auto >back
  cmp -s plain back || fail "des3 of $size bytes does not come back"
  head -c $((size / 8 * 8)) plain |
    openssl enc -des-ede3 -K 0123456789ABCDEF23456789ABCDEF01456789ABCDEF0123 -nopad >theirs
  head -c $((size / 8 * 8)) cipher | cmp -s - theirs || fail "des3 of $size bytes differs from openssl"
done
printf '%s' 12345678 | plx des3 encrypt --key-file des.two | plx des3 decrypt --key-file des.two >back
same "as it comes: text, zero block, and one more" "$(head -c 16 back | xxd -p)" \
  "31323334353637380000000000000000"
same "as it comes, its size" "$(stat -c %s back)" 24
finish
