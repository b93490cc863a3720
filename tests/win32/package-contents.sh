#!/usr/bin/env bash
# The Windows zip: made by cpack from this build, it holds each named file in one top folder, and its programs
# import only DLLs that come with Windows. Arguments: BUILD_DIR OBJDUMP FILE...
set -euo pipefail
build=$1 objdump=$2
shift 2

work=$(mktemp -d "${TMPDIR:-/tmp}/tallivex-package.XXXXXX")
trap 'rm -rf "$work"' EXIT
(cd "$work" && cpack -G ZIP --config "$build/CPackConfig.cmake" -B "$work/out" >/dev/null)
zips=("$work"/out/Tallivex-*-win64.zip)
[ -f "${zips[0]}" ] || { echo "FAILED: no Tallivex-<version>-win64.zip"; exit 1; }
zip=${zips[0]}
echo "$(basename "$zip"): $(stat -c %s "$zip") bytes"

top=$(basename "$zip" .zip)
listing=$(cmake -E tar tf "$zip")
status=0
for name in "$@"; do
  grep -qxF "$top/$name" <<<"$listing" || { echo "FAILED: $name is not in the zip"; status=1; }
done

# What a clean Windows has; the MinGW runtime (libstdc++, libgcc, winpthread) must not be needed.
system='^(kernel32|user32|gdi32|gdiplus|shell32|ole32|oleaut32|advapi32|comctl32|comdlg32|msvcrt|ucrtbase|shlwapi|winmm|ws2_32|bcrypt|version|uxtheme|dwmapi|msimg32|imm32|shcore|api-ms-win-[a-z0-9-]+)\.dll$'
(cd "$work" && cmake -E tar xf "$zip")
for exe in "$work/$top"/*.exe; do
  while read -r dll; do
    grep -qiE "$system" <<<"$dll" || { echo "FAILED: $(basename "$exe") needs $dll"; status=1; }
  done < <("$objdump" -p "$exe" | sed -n 's/^\s*DLL Name: //p')
done
[ "$status" = 0 ] && echo "the zip holds $# files and needs no DLL beside them"
exit "$status"
