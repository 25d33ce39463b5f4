#!/usr/bin/env bash
# The kernels in use are those that the system says the processor has the instructions for.
. "$(dirname "$0")/lib.sh"

# named SHA256 BASE64 DES BLOCKS: both forms of the answer say so.
named() {
  expect 0 "kernels +sha256 $1, base64 $2, des $3( .from $4 blocks on.)?" plx version
  expect 0 "\"sha256\": \"$1\", \"base64\": \"$2\", \"des\": \"$3\", \"des_from_blocks\": $4\}" plx version --json
}

features=" $(sed -n 's/^\(flags\|Features\)[^:]*://p' /proc/cpuinfo | head -1) "
has() {
  local feature
  for feature in "$@"; do [[ $features == *" $feature "* ]] || return 1; done
}

if [ ${#emulator[@]} -gt 0 ]; then
  export QEMU_CPU
  QEMU_CPU=max && named armv8 neon tables 0
  QEMU_CPU=cortex-a7 && named portable neon tables 0
elif [ "$(uname -m)" = x86_64 ]; then
  sha256=portable base64=portable des=portable64 from=32
  if has ssse3; then base64=ssse3; fi
  if has ssse3 sse4_1 sha_ni; then sha256=sha-ni; fi
  if has avx2; then base64=avx2 des=avx2 from=24; fi
  if has avx512f avx512bw avx512dq avx512vl; then
    des=avx512 from=20
    if has avx512vbmi; then base64=avx512; fi
  fi
  named $sha256 $base64 $des $from
elif [[ $(uname -m) == arm* ]]; then
  sha256=portable base64=portable
  if has neon; then base64=neon; fi
  if has neon sha2; then sha256=armv8; fi
  named $sha256 $base64 tables 0
fi
finish
