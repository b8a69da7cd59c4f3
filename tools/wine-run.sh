#!/bin/sh
# Runs a Windows executable under Wine: tools/wine-run.sh PROGRAM [ARGUMENT...]
#
# CTest uses it for cross-built tests. It keeps one Wine server alive between runs, so that a start takes
# milliseconds, and starts the server's services apart from the test: they would hold on to the pipe
# through which CTest waits for the end of the output.

export LC_ALL=C.UTF-8
export WINEPREFIX="${WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/kelvara-wine}"
export WINEDEBUG="${WINEDEBUG:--all}"
# No .NET and no HTML engine: a fresh prefix would ask to download them.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"

# The first of the given commands that exists.
first_of() {
    for candidate in "$@"; do
        command -v "$candidate" && return 0
    done
    return 1
}

# Debian keeps the 64-bit loader out of PATH.
wine=$(first_of wine64 /usr/lib/wine/wine64 wine) || { echo "wine-run.sh: Wine is not installed" >&2; exit 127; }
server=$(first_of wineserver64 /usr/lib/wine/wineserver64 wineserver /usr/lib/wine/wineserver) ||
    { echo "wine-run.sh: wineserver is not installed" >&2; exit 127; }

if [ "$#" -eq 0 ]; then
    echo "usage: wine-run.sh PROGRAM [ARGUMENT...]" >&2
    exit 2
fi

# One start at a time may find that there is no server yet.
mkdir -p "$WINEPREFIX" || exit 1
(
    flock 9
    if ! "$server" -k0 >/dev/null 2>&1; then
        "$server" -p60 >/dev/null 2>&1 </dev/null 9>&-
        "$wine" wineboot >/dev/null 2>&1 </dev/null 9>&-
    fi
) 9>"$WINEPREFIX/.start-lock"

# On a terminal the program talks to it directly.
if [ -t 1 ]; then
    exec "$wine" "$@"
fi

# Files take both outputs: should the services have ended meanwhile, the test itself starts them anew.
# One start in some thousands comes back at once with nothing written: then once more.
output=$(mktemp) && errors=$(mktemp) || exit 1
trap 'rm -f "$output" "$errors"' EXIT
"$wine" "$@" >"$output" 2>"$errors"
code=$?
if [ ! -s "$output" ]; then
    "$wine" "$@" >"$output" 2>"$errors"
    code=$?
fi
cat "$errors" >&2
cat "$output"
exit "$code"
