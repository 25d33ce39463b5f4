#!/usr/bin/env bash
# Builds the consumer against an installed tree and runs its programs.
#   consume.sh cmake|pkg-config TREE WORK
# Compilers and the way to run a program come from the environment: CC, CXX, RUNNER, TOOLCHAIN (a
# CMake toolchain file, for the cross build), FLAGS (of the compilers), LIBRARY_PATH_EXTRA.
set -euo pipefail
way=$1 tree=$2 work=$3
source=$(cd "$(dirname "$0")/consumer" && pwd)

rm -rf "$work"
mkdir -p "$work"
library=$(dirname "$(find "$tree" -name libplxutility.so | head -1)")
read -ra flags <<<"${FLAGS:-}"
case $way in
  cmake)
    options=(-G Ninja -DCMAKE_BUILD_TYPE=Release "-DCMAKE_PREFIX_PATH=$tree"
      "-DCMAKE_C_COMPILER=$CC" "-DCMAKE_CXX_COMPILER=$CXX" "-DCMAKE_FIND_ROOT_PATH=$tree"
      "-Dplxutility_DIR=$library/cmake/plxutility")
    [ -z "${TOOLCHAIN:-}" ] || options+=("-DCMAKE_TOOLCHAIN_FILE=$TOOLCHAIN")
    cmake -S "$source" -B "$work" "${options[@]}" >"$work/log" 2>&1 &&
      cmake --build "$work" >>"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
    ;;
  pkg-config)
    # --define-prefix: the tree may stand anywhere, not only where it was installed for. Some
    # pkg-config programs take three folders above the file for the prefix; ours lies four above
    # where there is an architecture's folder, so the prefix is given.
    export PKG_CONFIG_LIBDIR=$library/pkgconfig
    prefix=$(cd "$tree" && pwd)
    [ -d "$tree/include" ] || prefix=$prefix/usr
    read -ra options < <(pkg-config --define-variable=prefix="$prefix" --cflags --libs plxutility)
    warnings=(-Wall -Wextra -Wpedantic -Werror)
    "$CC" -std=c99 "${warnings[@]}" "${flags[@]}" "$source/host.c" -o "$work/host_c" "${options[@]}"
    "$CXX" -std=c++17 "${warnings[@]}" "${flags[@]}" "$source/host.cc" -o "$work/host_cc" \
      "${options[@]}"
    ;;
  *)
    echo "unknown way: $way" >&2
    exit 2
    ;;
esac

for program in host_c host_cc; do
  read -ra runner <<<"${RUNNER:-}"
  path=$library${LIBRARY_PATH_EXTRA:+:$LIBRARY_PATH_EXTRA}
  if [ -n "${RUNNER:-}" ]; then
    "${runner[@]}" -E "LD_LIBRARY_PATH=$path" "$work/$program"
  else
    LD_LIBRARY_PATH=$path "$work/$program"
  fi
done
