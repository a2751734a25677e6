# What the scripts share; sourced by them. Leaves the shell in the project's top folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build_packages=(g++ cmake ninja-build libboost1.81-dev zlib1g-dev libsqlite3-dev
  libzip-dev libcurl4-openssl-dev unixodbc-dev libpq-dev libfast-float-dev libcli11-dev nlohmann-json3-dev libfmt-dev
  libssl-dev libpugixml-dev libutf8proc-dev libdeflate-dev)
test_packages=(libgtest-dev libgmock-dev openssl libsqliteodbc postgresql odbc-postgresql python3-botocore
  python3-pyftpdlib python3-openssl)
# For the Windows build on this system, and to run what it makes.
cross_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev libboost1.81-dev libfast-float-dev cmake ninja-build
  dpkg-dev make gcc tcl locales wine64)

say() { printf '%s\n' "$*" >&2; }

# run_quietly LOG COMMAND...: keeps a command's output in LOG and shows it only when the command fails.
run_quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if ! "$@" >"$log" 2>&1 </dev/null; then
    say "failed: $*"
    tail -n 60 "$log" >&2
    say "all of it is in $log"
    return 1
  fi
}

# install_missing PACKAGE...: installs those that are not there.
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "installing ${missing[*]}"
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  run_quietly build/apt-update.log "${as_root[@]}" apt-get update
  run_quietly build/apt-install.log "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}"
}
