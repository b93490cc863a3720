#!/usr/bin/env bash
# Builds the meter and starts it beside the practice target (a stand-in game window), so
# the whole meter can be seen at work within a minute without the game: it captures every
# 10 seconds into build/practice-home. Without a display it runs on a virtual screen and
# leaves a screenshot of that screen in build/practice-home/screen.png after a minute.
#
#   scripts/run.sh           the meter and the practice target
#   scripts/run.sh --game    the meter alone, against the real game, with its usual settings
set -euo pipefail
cd "$(dirname "$0")/.."

practice=1
if [ "${1:-}" = "--game" ]; then
  practice=0
  shift
fi

scripts/deps.sh run
cmake --preset release -DTALLIVEX_BUILD_TESTS=OFF -DTALLIVEX_BUILD_BENCH=OFF >/dev/null
cmake --build --preset release

pids=()
cleanup() { for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; }
trap cleanup EXIT

headless=0
if [ -z "${DISPLAY:-}" ]; then
  echo "No display: running on a virtual screen (Xvfb :57)."
  Xvfb :57 -screen 0 1760x1000x24 -nolisten tcp -noreset >/dev/null 2>&1 &
  pids+=($!)
  export DISPLAY=:57
  headless=1
  sleep 1
fi

bin=build/release
if [ "$practice" = 0 ]; then
  exec "$bin/src/app/tallivex" "$@"
fi

home=build/practice-home
mkdir -p "$home"
if [ ! -f "$home/TV2MConfig.ini" ]; then
  # Defaults for a full-screen game, answered here so no question waits on start-up.
  "$bin/src/cli/tallivex-cli" config defaults --home "$home" --fullscreen >/dev/null 2>&1
fi
echo "Meter: home $home, a reading every 10 seconds; record files in $home/log."
"$bin/src/app/tallivex" --home "$home" --interval 10 -qwindowgeometry 900x560+820+0 "$@" &
meter=$!
sleep 2
# Started second, the game window takes the focus, as the game has it while one plays.
"$bin/tools/practice/tallivex-practice" &
pids+=($!)
echo "Practice target: the window \"MapleStory\" (keys: D dies, C changes character, U levels up)."
if [ "$headless" = 1 ]; then
  ( sleep 60 && command -v import >/dev/null && import -window root "$home/screen.png" \
      && echo "Screenshot of the virtual screen: $home/screen.png" ) &
  pids+=($!)
fi
wait "$meter"
