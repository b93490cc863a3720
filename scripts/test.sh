#!/usr/bin/env bash
# Builds and runs every test: the debug build (warnings are errors), the Debian package of
# the release build installed into a scratch folder and run, the unit tests again under
# AddressSanitizer + UndefinedBehaviorSanitizer, a short run of each fuzz target, and
# the Windows cross build with the core unit tests and the Win32 back-end tests under wine
# on a virtual X screen; last, the Linux and the Windows command line replay one session
# and must agree byte for byte.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh test

echo "== debug build and tests"
cmake --preset ci
cmake --build --preset ci
ctest --preset ci

echo "== Linux package: release build of the programs, the .deb unpacked into a scratch root and run"
# The same tree and options as scripts/run.sh, so neither rebuilds after the other.
cmake --preset release -DTALLIVEX_BUILD_TESTS=OFF -DTALLIVEX_BUILD_BENCH=OFF >/dev/null
cmake --build --preset release
tests/package/deb-package.sh build/release

echo "== unit tests under AddressSanitizer + UndefinedBehaviorSanitizer"
cmake --preset asan
cmake --build --preset asan
ctest --preset asan

echo "== fuzz targets, a short run of each"
if command -v clang++ >/dev/null; then
  cmake --preset fuzz
  cmake --build --preset fuzz
  scripts/fuzz.sh 20
else
  echo "clang++ is missing: fuzz targets skipped"
fi

echo "== Windows cross build (MinGW-w64)"
cmake --preset mingw
cmake --build --preset mingw

echo "== core unit tests and Win32 back-end tests under wine"
wineStarted=$SECONDS
# Debian's wine64 package alone installs no "wine" on the PATH.
wine=$(command -v wine || command -v wine64 || echo /usr/lib/wine/wine64)
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
export WINEPREFIX="$PWD/build/mingw/wineprefix" WINEDEBUG=-all WINEARCH=win64
# Wine reads the Linux arguments (Japanese folder names) in the locale's character set.
export LC_ALL=C.UTF-8
# A wine server left from an earlier run on this prefix would keep its old display.
"$wineserver" -k 2>/dev/null || true

# A free display number, chosen by Xvfb itself; -noreset, or the server starts over (dropping
# whoever connects meanwhile) each time a test program closes the last connection.
displayFile=$(mktemp)
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -noreset 3>"$displayFile" 2>/dev/null &
xvfb=$!
cleanup() {
  "$wineserver" -k 2>/dev/null || true
  kill "$xvfb" 2>/dev/null || true
  rm -f "$displayFile"
}
trap cleanup EXIT
for _ in $(seq 50); do
  [ -s "$displayFile" ] && break
  sleep 0.1
done
[ -s "$displayFile" ] || { echo "Xvfb did not start"; exit 1; }
export DISPLAY=":$(head -n1 "$displayFile")"

if [ ! -f "$WINEPREFIX/system.reg" ]; then
  echo "creating the wine prefix (once)"
  "$wine" wineboot -i >/dev/null 2>&1 || true
  "$wineserver" -w
  # Without a window manager wine waits 2 s for every managed window to unmap.
  "$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1
  "$wineserver" -w
  # Wine's menu and caption fonts reach Japanese only through a face it lacks.
  "$wine" reg add 'HKCU\Software\Wine\Fonts\Replacements' /v 'MS UI Gothic' /d 'Noto Sans CJK JP' /f >/dev/null 2>&1
  "$wineserver" -w
fi
[ -f "$WINEPREFIX/system.reg" ] || { echo "wine prefix could not be created"; exit 1; }
# One wine server for every test program: starting one for each costs seconds. Its system
# processes start now, with no output to hold open, or ctest would wait for them forever.
"$wineserver" -p
"$wine" cmd /c exit >/dev/null 2>&1 </dev/null || true
ctest --preset mingw

echo "== replay comparison: the Linux and the Windows command line on one session"
TALLIVEX_WINDOWS_CLI="$PWD/build/mingw/src/cli/tallivex-cli.exe" TALLIVEX_WINE="$wine" \
  build/ci/tests/replay/tallivex_replay_comparison
echo "wine part: $((SECONDS - wineStarted)) s"

echo "All tests passed."
