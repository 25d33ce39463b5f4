# Shared by the scripts: where the project is, how packages get here, how a step is announced.
# Source it from bash after `set -euo pipefail`.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

say() { printf '== %s\n' "$*"; }
die() { printf 'error: %s\n' "$*" >&2; exit 1; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    die "'$*' needs root; run this script as root or install sudo"
  fi
}

missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
      printf '%s\n' "$package"
  done
}

# install_packages NAME...: installs what is missing, and only then asks the network.
install_packages() {
  command -v apt-get >/dev/null || die "this script installs Debian packages and found no apt-get"
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -eq 0 ] && return
  say "installing ${missing[*]}"
  as_root apt-get update -qq || true # a failed index may still serve what is needed
  # Without recommendations: those of the multilib compilers would remove the ARM compiler.
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null || die "could not install: ${missing[*]}"
}

build_packages=(g++ cmake ninja-build libssl-dev libcli11-dev libfmt-dev scdoc)
test_packages=(clang libclang-rt-14-dev libgtest-dev googletest openssl binutils xxd parallel time
  g++-arm-linux-gnueabihf qemu-user-static)

# The compiler cache is used where it is, and not asked for where it is not.
if command -v ccache >/dev/null; then
  export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# build_preset NAME: configures and builds a preset, quietly unless it fails.
build_preset() {
  say "building $1"
  local log
  log=$(mktemp)
  if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    die "preset $1 does not build"
  fi
  rm -f "$log"
}
