#!/usr/bin/env bash
# Runs each fuzz target of the fuzz preset for SECONDS (default 20) on a working copy of its
# committed corpus, so the committed seeds stay small. Usage: scripts/fuzz.sh [SECONDS] [TARGET...]
# A finding is left as build/fuzz/findings/TARGET/crash-* and the script fails.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-20}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(CaptureBitmap ConfigFile Recognizer RecordFile GestureMatcher LiveFigures)

for target in "${targets[@]}"; do
  binary=build/fuzz/tests/fuzz/fuzz_$target
  work=build/fuzz/corpus/$target
  findings=build/fuzz/findings/$target
  mkdir -p "$work" "$findings"
  echo "-- $target, $seconds s"
  # -timeout: one input running longer than this is a finding (unbounded work).
  "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$findings/" "$work" "tests/fuzz/corpus/$target" 2>"$findings/log.txt" ||
    { tail -n 40 "$findings/log.txt"; echo "fuzz_$target found a fault"; exit 1; }
  grep -E '^stat::(number_of_executed_units|average_exec_per_sec)' "$findings/log.txt" || true
done
