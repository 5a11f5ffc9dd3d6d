# shellcheck shell=bash
# Debian packages that the scripts need, and installing those that are missing.

# What it takes to configure and build everything, tests and examples included.
# shellcheck disable=SC2034  # for the scripts that read this file
build_packages=(
  cmake ninja-build g++ llvm-14-dev zlib1g-dev opencl-headers
  ocl-icd-opencl-dev libpng-dev libgtest-dev libgmock-dev libjs-dygraphs
)

# What the tests run besides.
# shellcheck disable=SC2034
test_packages=(pocl-opencl-icd clinfo clfft-client python3 binutils chromium locales
  opencl-clhpp-headers)
# Many machines have these two from elsewhere, which Debian's would disturb.
command -v node >/dev/null || test_packages+=(nodejs)
command -v npm >/dev/null || test_packages+=(npm)

# What it takes to build the fuzzers and to run them, besides cmake and ninja.
# shellcheck disable=SC2034
fuzz_packages=(
  cmake ninja-build clang-14 libclang-rt-14-dev llvm-14-dev zlib1g-dev
  opencl-headers libgtest-dev libgmock-dev python3
)

# What it takes to build for Windows and to run the tests there, besides.
# shellcheck disable=SC2034
windows_packages=(g++-mingw-w64-x86-64-posix llvm-14-tools xz-utils googletest
  wine64)

package_installed() {
  local status
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$1" \
    2>/dev/null) || return 1
  [[ $status == installed ]]
}

# need_packages NAME...: returns when all are installed; ends the script with one
# clear message when that cannot be done. Calls apt-get for missing ones only.
need_packages() {
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "This is no Debian system; please install by hand: $*" >&2
    exit 1
  fi

  local name missing=()
  for name in "$@"; do
    package_installed "$name" || missing+=("$name")
  done
  ((${#missing[@]})) || return 0

  local as_root=()
  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "Missing packages, and no sudo to install them. As root, please run:" >&2
      echo "  apt-get install ${missing[*]}" >&2
      exit 1
    fi
    as_root=(sudo)
  fi

  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update --quiet --quiet
  if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --yes --quiet --quiet --no-install-recommends \
    "${missing[@]}" >/dev/null; then
    echo "apt-get could not install: ${missing[*]}" >&2
    exit 1
  fi
}
