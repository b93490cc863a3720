#!/usr/bin/env bash
# Installs the Debian packages the build needs, only those that are missing.
# Usage: scripts/deps.sh run|test
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config qt6-base-dev libxcb1-dev libxcb-xinput-dev libxcb-shm0-dev libasound2-dev fonts-noto-cjk
  qt6-translations-l10n)
if [ "${1:-run}" = test ]; then
  # The last line: making the Debian package (dpkg-shlibdeps) and checking it; the
  # translations checked against the texts of the code (xgettext, msgcmp).
  packages+=(libgtest-dev g++-mingw-w64-x86-64-posix xvfb xauth xdotool imagemagick wine64 clang libclang-rt-14-dev
    dpkg-dev appstream desktop-file-utils lintian gettext)
else
  packages+=(xvfb xauth)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
