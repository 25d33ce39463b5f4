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
  comm -23 <(printf '%s\n' "$@" | sort -u) \
    <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
      sed -n 's/^installed //p' | sort -u)
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
test_packages=(python3 pkg-config clang libclang-rt-14-dev libgtest-dev googletest openssl binutils
  xxd parallel time
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

# unpack_packages ARCHITECTURE TARGET NAME...: unpacks Debian packages of any architecture into a
# folder. The machine's own packages and package lists stay as they are. Nothing is asked of the
# network when the folder holds just these already.
unpack_packages() {
  local architecture=$1 target=$2 work package
  shift 2
  [ "$(cat "$target/.unpacked" 2>/dev/null)" = "$*" ] && return
  say "unpacking for $architecture: $*"
  work=$(mktemp -d)
  mkdir -p "$work/lists/partial" "$work/packages" "$target"
  local apt=(apt-get -qq "-oAPT::Architecture=$architecture" "-oAPT::Architectures=$architecture"
    "-oDir::State::Lists=$work/lists" -oAPT::Sandbox::User=root)
  # A failed index is reported and does no harm as long as the packages are found.
  "${apt[@]}" update >"$work/log" 2>&1 || true
  (cd "$work/packages" && "${apt[@]}" download "$@" >>"$work/log" 2>&1) || {
    cat "$work/log" >&2
    rm -rf "$work"
    die "could not fetch the $architecture packages: $*"
  }
  for package in "$work"/packages/*.deb; do
    dpkg -x "$package" "$target"
  done
  printf '%s' "$*" >"$target/.unpacked"
  rm -rf "$work"
}

# figure NAME VALUE: a figure for the table of scripts/verify.
figure() {
  printf '%s: %s\n' "$1" "$2"
  [ -z "${PLX_FIGURES:-}" ] || printf '%s\t%s\n' "$1" "$2" >>"$PLX_FIGURES"
}
