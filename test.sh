#!/usr/bin/env bash
# Sets up, builds and runs the tests.
#   ./test.sh            everything: Linux, its sanitizers, a search by the fuzzer, and the Windows build under Wine
#   ./test.sh --linux    Linux alone: release, then the sanitizers and the fuzzer
#   ./test.sh --quick    the Linux release tests alone
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root"

presets=(release asan tsan fuzz windows)
case "${1:-}" in
  "") ;;
  --linux) presets=(release asan tsan fuzz) ;;
  --quick) presets=(release) ;;
  *) echo "usage: ./test.sh [--linux | --quick]" >&2; exit 2 ;;
esac

fail() {
  echo "test.sh: FAILED: $1" >&2
  exit 1
}

build() {
  local preset=$1 log=build/$1-build.log
  mkdir -p build
  if ! cmake --preset "$preset" >"$log" 2>&1 || ! cmake --build --preset "$preset" >>"$log" 2>&1; then
    tail -n 60 "$log" >&2
    fail "the $preset build; the whole output is in $log"
  fi
}

groups=(build tests)
for group in fuzz windows; do
  [[ " ${presets[*]} " == *" $group "* ]] && groups+=("$group")
done
tools/setup-debian.sh "${groups[@]}" || fail "setting up the machine"
tools/setup-debian.sh emulator || echo "test.sh: no emulator: the tests of the FMA4 level will be skipped" >&2

if command -v ccache >/dev/null; then
  # Hits across clones: paths below the root, and the folder it lies in, make no difference.
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
fi

for preset in "${presets[@]}"; do
  echo "== $preset: building"
  started=$SECONDS
  build "$preset"
  echo "== $preset: built in $((SECONDS - started)) s, testing"
  started=$SECONDS
  ctest --preset "$preset" </dev/null || fail "the $preset tests"
  echo "== $preset: tested in $((SECONDS - started)) s"
done
echo "All tests passed: ${presets[*]}"
