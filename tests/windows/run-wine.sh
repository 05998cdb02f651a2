#!/bin/sh
# Runs the Windows test programs of a cross build under wine64, in a Wine prefix of the build's
# own, and fails when any of them fails.
#   run-wine.sh BUILD_DIR PROGRAM...
set -eu
build=$(cd "$1" && pwd)
shift
export WINEPREFIX="$build/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# Debian's wine64 package keeps its programs out of PATH (the wine package adds the wrappers).
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
if [ ! -f "$WINEPREFIX/system.reg" ]; then
    "$wine" wineboot -i >/dev/null 2>&1 || true
fi
status=0
for program in "$@"; do
    echo "== $program (wine64)"
    # Test folders an earlier program could not remove (files it kept open until it ended).
    rm -rf "$WINEPREFIX"/drive_c/users/*/Temp/TS* "$WINEPREFIX"/drive_c/users/*/Temp/tarsel-test-*
    if ! "$wine" "$build/bin/$program.exe" --gtest_brief=1; then
        echo "== $program FAILED"
        status=1
    fi
done
"$wineserver" -w 2>/dev/null || true
exit $status
