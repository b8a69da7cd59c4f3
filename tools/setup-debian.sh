#!/usr/bin/env bash
# Installs the Debian packages that a task needs and this machine lacks.
#   tools/setup-debian.sh build|tests|emulator|fuzz|windows|bench...
set -euo pipefail

declare -A packages=(
  [build]="g++ cmake ninja-build"
  [tests]="libgtest-dev libgmp-dev python3"
  [emulator]="bochs bochsbios vgabios binutils isolinux syslinux-common xorriso"
  [fuzz]="clang libclang-rt-dev"
  [windows]="g++-mingw-w64-x86-64-posix wine64 wine googletest"
  [bench]="libbenchmark-dev libgmp-dev libmpfr-dev libflint-dev libflint-arb-dev"
)

wanted=()
for group in "$@"; do
  [ -n "${packages[$group]:-}" ] || { echo "setup-debian.sh: unknown group '$group'" >&2; exit 2; }
  # shellcheck disable=SC2206
  wanted+=(${packages[$group]})
done

missing=()
for package in "${wanted[@]}"; do
  dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "These packages are missing and this user may not install them: ${missing[*]}" >&2
    exit 1
  }
  as_root=(sudo)
fi
log=$(mktemp)
if ! { "${as_root[@]}" apt-get update -q &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"; } \
     >"$log" 2>&1 </dev/null; then
  tail -n 30 "$log" >&2
  echo "The packages could not be installed: ${missing[*]}" >&2
  exit 1
fi
rm -f "$log"
