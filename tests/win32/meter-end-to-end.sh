#!/usr/bin/env bash
# The meter against the practice target under wine, on the display in DISPLAY: a fresh home, every record a state
# the target drew, a gesture as real clicks, a WM_CLOSE end. Arguments: WINE METER.exe PRACTICE.exe SUPPORT.exe
set -uo pipefail
wine=$1 meter=$2 practice=$3 support=$4

home=$(mktemp -d "${TMPDIR:-/tmp}/tallivex-wine-e2e.XXXXXX")
# Wine maps Z: to the Unix root.
winhome="Z:${home//\//\\}"
log="$home/debug.txt"
pids=()
finish() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$home"
}
trap finish EXIT

fail() {
  echo "FAILED: $*"
  echo "--- debug log"; cat "$log" 2>/dev/null
  exit 1
}
# eventually SECONDS COMMAND...: polls the command every 0.2 s until it succeeds.
eventually() {
  local end=$((SECONDS + $1)); shift
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    sleep 0.2
  done
}
logged() { grep -qF -- "$1" "$log" 2>/dev/null; }
# More than N lines in the session's record file: its header and N records. The session
# history beside it has lines of its own from the first reading on.
records() {
  [ "$(find "$home/save/log" -type f ! -name 'セッション履歴.csv' -exec cat {} + 2>/dev/null | grep -c .)" -gt "$1" ]
}
# clicks LRLL: left and right clicks a tenth of a second apart, in one xdotool command chain.
clicks() {
  xdotool $(sed 's/L/click 1 sleep 0.1 /g; s/R/click 3 sleep 0.1 /g' <<<"$1")
}

"$wine" "$support" prepare "$winhome" || fail "the home folder could not be prepared"

"$wine" "$practice" --state-file "$winhome\\state.txt" --level 50 --exp-per-second 1234 \
  --money-per-second 567 >/dev/null 2>&1 &
pids+=($!)
eventually 30 xdotool search --name '^MapleStory$' >/dev/null || fail "no practice window"
game=$(xdotool search --name '^MapleStory$' | head -n1)

"$wine" "$meter" --home "$winhome" --interval 3 >/dev/null 2>&1 &
pids+=($!)
eventually 30 logged "Mouse Events Acquire" || fail "the meter did not start listening to the mouse"
# Beside the game's numbers (the regions end at x = 553), as a player would place it.
"$wine" "$support" place "$(basename "$meter")" 560 0 || fail "no meter window to place"
# The meter took the focus when it appeared; the player clicks back into the game (with
# no window manager, a click is what activates a window). A lone click makes no gesture.
# On a loaded machine a click may come before wine is ready for it: click again while no
# reading comes (the meter reads only while the game is in front).
for _ in 1 2 3; do
  xdotool mousemove --window "$game" 400 300 click 1
  sleep 1.6
  eventually 20 records 2 && break
done
records 2 || fail "fewer than two records"

clicks LRLL
eventually 10 logged "Suspend Mode On " || fail "L R L L did not suspend"
# Longer than the gesture time, so the next clicks start a gesture of their own.
sleep 2
clicks LRLR
eventually 10 logged "Suspend Mode Off " || fail "L R L R did not resume"

"$wine" "$support" check "$winhome" "$winhome\\state.txt" 2 || fail "the records do not match what was drawn"

"$wine" taskkill /im "$(basename "$meter")" >/dev/null
eventually 15 logged "End of the Program " || fail "no orderly end after WM_CLOSE"
"$wine" taskkill /im "$(basename "$practice")" >/dev/null
echo "the meter read the practice target under wine"
