#!/usr/bin/env bash
# Builds the meter and starts it. Without a display it runs on a virtual screen (Xvfb).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh run
cmake --preset release -DTALLIVEX_BUILD_TESTS=OFF -DTALLIVEX_BUILD_BENCH=OFF >/dev/null
cmake --build --preset release

if [ -z "${DISPLAY:-}" ]; then
  echo "No display: running on a virtual screen (Xvfb :57)."
  Xvfb :57 -screen 0 1280x1024x24 >/dev/null 2>&1 &
  xvfb=$!
  trap 'kill $xvfb 2>/dev/null || true' EXIT
  export DISPLAY=:57
  sleep 1
fi
./build/release/src/app/tallivex "$@"
