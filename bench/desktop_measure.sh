#!/usr/bin/env bash
# The desktop program on its own virtual 1920x1080 screen beside the practice target, as
# scripts/run.sh runs it (a reading every 10 s): start-up time (launch to visible window),
# resident memory 30 s after start, and CPU time used over the next 60 s (6 readings), with
# the compact window open.
# Prints one line per run and the medians.
# Usage: bench/desktop_measure.sh [BUILD_DIR (build/release)] [RUNS (3)]
# METER=PATH measures another build of the desktop program against the same practice target.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
runs=${2:-3}
work=$(mktemp -d)
pids=()
cleanup() { for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; rm -rf "$work"; }
trap cleanup EXIT

Xvfb -displayfd 9 -screen 0 1920x1080x24 -nolisten tcp -noreset 9>"$work/display" >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 50); do [ -s "$work/display" ] && break; sleep 0.1; done
export DISPLAY=":$(cat "$work/display")"
"$build/tools/practice/tallivex-practice" >/dev/null 2>&1 &
pids+=($!)
"$build/src/cli/tallivex-cli" config defaults --home "$work/home" --fullscreen >/dev/null 2>&1
# With the compact window open over the game, as a player keeps it.
# (The file is in Shift-JIS: its line is found by its comment in UTF-8.)
iconv -f CP932 -t UTF-8 "$work/home/TV2MConfig.ini" | sed '/小窓/ s/False ,/True ,/' |
  iconv -f UTF-8 -t CP932 >"$work/home/config.tmp" && mv "$work/home/config.tmp" "$work/home/TV2MConfig.ini"
# CPU time of all the meter's threads in nanoseconds: the scheduler's own count, where
# /proc/PID/stat counts in clock ticks of 10 ms, too coarse for a few readings.
cpuNs() { cat /proc/"$1"/task/*/schedstat 2>/dev/null | awk '{s += $1} END {print s}'; }

median() { sort -g | awk '{v[NR]=$1} END {print v[int((NR+1)/2)]}'; }
: >"$work/results"
for run in $(seq "$runs"); do
  start=$(date +%s%N)
  "${METER:-$build/src/app/tallivex}" --home "$work/home" --interval 10 -qwindowgeometry 900x560+820+0 >/dev/null 2>&1 &
  meter=$!
  xdotool search --sync --onlyvisible --classname '^tallivex$' >/dev/null
  startMs=$(( ($(date +%s%N) - start) / 1000000 ))
  sleep 30
  rssKb=$(awk '/VmRSS/ {print $2}' "/proc/$meter/status")
  cpu0=$(cpuNs "$meter")
  sleep 60
  cpu1=$(cpuNs "$meter")
  cpuMs=$(awk -v a="$cpu0" -v b="$cpu1" 'BEGIN {printf "%.1f", (b - a) / 1e6}')
  kill "$meter"
  wait "$meter" 2>/dev/null || true
  echo "run $run: start-up ${startMs} ms, resident ${rssKb} kB, CPU ${cpuMs} ms in 60 s"
  echo "$startMs $rssKb $cpuMs" >>"$work/results"
done
echo "median: start-up $(cut -d' ' -f1 "$work/results" | median) ms," \
  "resident $(cut -d' ' -f2 "$work/results" | median) kB," \
  "CPU $(cut -d' ' -f3 "$work/results" | median) ms in 60 s (load: $(cut -d' ' -f1-3 /proc/loadavg))"
