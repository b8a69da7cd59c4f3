#!/usr/bin/env bash
# Sets up, builds and runs Kelvara.   ./run.sh [ARGUMENTS OF KELVARA...]
# Without arguments: 50,000 digits of pi, written to the folder "digits".
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

fail() {
  echo "run.sh: $1" >&2
  exit 1
}

build() {
  local log=$root/build/app-build.log
  mkdir -p "$root/build"
  cmake -S "$root" --preset app >"$log" 2>&1 && cmake --build "$root/build/app" >>"$log" 2>&1 || {
    tail -n 40 "$log" >&2
    fail "the build failed; the whole output is in build/app-build.log."
  }
}

"$root/tools/setup-debian.sh" build || fail "the machine could not be set up."
echo "Building Kelvara (some minutes the first time)..."
(cd "$root" && build)

if [ $# -eq 0 ]; then
  mkdir -p "$root/digits"
  set -- custom pi -dec:50000 -o "$root/digits"
fi
# The feature check warns where the build was tuned for another processor; it need not wait for a key.
exec "$root/build/app/kelvara" skip-warnings "$@"
