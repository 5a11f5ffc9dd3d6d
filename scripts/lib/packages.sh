# shellcheck shell=bash
# Debian packages that the scripts need, and installing those that are missing.

# What it takes to configure and build everything, tests and examples included.
# shellcheck disable=SC2034  # for the scripts that read this file
build_packages=(
  cmake ninja-build g++ llvm-14-dev zlib1g-dev opencl-headers
  ocl-icd-opencl-dev libpng-dev libgtest-dev libgmock-dev libjs-dygraphs
  libclang-14-dev libcli11-dev
)

# What the tests run besides.
# shellcheck disable=SC2034
test_packages=(pocl-opencl-icd clinfo clfft-client python3 binutils locales
  opencl-clhpp-headers oclgrind)

# What the tests of pages run besides.
# shellcheck disable=SC2034
browser_packages=(chromium)
# Many machines have these two from elsewhere, which Debian's would disturb.
command -v node >/dev/null || browser_packages+=(nodejs)
command -v npm >/dev/null || browser_packages+=(npm)

# What it takes to build the fuzzers and to run them, besides cmake and ninja.
# shellcheck disable=SC2034
fuzz_packages=(
  cmake ninja-build clang-14 libclang-rt-14-dev llvm-14-dev zlib1g-dev
  opencl-headers libgtest-dev libgmock-dev python3
)

# What it takes to build for Windows and to run the tests there, besides.
# shellcheck disable=SC2034
windows_packages=(g++-mingw-w64-x86-64-posix llvm-14-tools xz-utils googletest
  libcli11-dev
  wine64)

package_installed() {
  local status
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$1" \
    2>/dev/null) || return 1
  [[ $status == installed ]]
}

# run_as_root COMMAND...: with sudo, unless this is root already.
run_as_root() {
  if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

# What apt-get says when another program holds one of its locks: that of the
# lists, of the archives or of dpkg. Updates run by themselves after a start.
lock_is_held='(Could not get lock|Unable to lock|Unable to acquire) '
lock_patience=600 # seconds

# run_apt ARGUMENT...: apt-get, silent unless it fails. Waits while another program
# holds a package lock, ten minutes at most, and says so.
run_apt() {
  local problem deadline=$((SECONDS + lock_patience)) told=
  until problem=$(run_as_root env LC_ALL=C DEBIAN_FRONTEND=noninteractive \
    apt-get --quiet --quiet "$@" 2>&1 >/dev/null); do
    if [[ ! $problem =~ $lock_is_held ]] || ((SECONDS >= deadline)); then
      printf '%s\n' "$problem" >&2
      return 1
    fi
    [[ $told ]] ||
      echo "Another program is installing packages; waiting up to ten minutes for it ..."
    told=yes
    sleep 5
  done
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

  if ((EUID != 0)) && ! command -v sudo >/dev/null; then
    echo "Missing packages, and no sudo to install them. As root, please run:" >&2
    echo "  apt-get install ${missing[*]}" >&2
    exit 1
  fi

  echo "Installing: ${missing[*]}"
  if ! run_apt update ||
    ! run_apt install --yes --no-install-recommends "${missing[@]}"; then
    echo "apt-get could not install: ${missing[*]}" >&2
    exit 1
  fi
}
