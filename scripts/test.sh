#!/usr/bin/env bash
# Builds and runs every test: the debug build (warnings are errors), the unit tests again
# under AddressSanitizer + UndefinedBehaviorSanitizer, and the Windows cross build.
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

echo "All tests passed."
