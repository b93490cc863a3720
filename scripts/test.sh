#!/usr/bin/env bash
# Builds and runs every test: the debug build (warnings are errors), the unit tests again
# under AddressSanitizer + UndefinedBehaviorSanitizer, and the Windows cross build with
# its Win32 back-end tests under wine on a virtual X screen.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh test

echo "== debug build and tests"
cmake --preset ci
cmake --build --preset ci
ctest --preset ci

echo "== unit tests under AddressSanitizer + UndefinedBehaviorSanitizer"
cmake --preset asan
cmake --build --preset asan
ctest --preset asan

echo "== Windows cross build (MinGW-w64)"
cmake --preset mingw
cmake --build --preset mingw

echo "== Win32 back-end tests under wine"
# Debian's wine64 package alone installs no "wine" on the PATH.
wine=$(command -v wine || command -v wine64 || echo /usr/lib/wine/wine64)
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
export WINEPREFIX="$PWD/build/mingw/wineprefix" WINEDEBUG=-all WINEARCH=win64
# A wine server left from an earlier run on this prefix would keep its old display.
"$wineserver" -k 2>/dev/null || true

# A free display number, chosen by Xvfb itself.
displayFile=$(mktemp)
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$displayFile" 2>/dev/null &
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
ctest --preset mingw

echo "All tests passed."
