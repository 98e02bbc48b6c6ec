#!/usr/bin/env bash
# Builds the fuzz targets (clang, libFuzzer, ASan+UBSan) and runs each for a while.
# Usage: fuzz.sh [SECONDS_PER_TARGET]  (default 10). Corpora grow in build/fuzz/corpus/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds="${1:-10}"
dir=$("$root/scripts/build.sh" fuzz)
status=0
# Undefined behaviour found by a target is a fault like any other.
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
for target in "$dir"/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  mkdir -p "$dir/corpus/$name"
  if "$target" -max_total_time="$seconds" -rss_limit_mb=2048 -print_final_stats=0 \
       -artifact_prefix="$dir/$name-" "$dir/corpus/$name" >"$dir/$name.log" 2>&1; then
    echo "fuzz $name: $(grep -o 'Done [0-9]* runs' "$dir/$name.log" | tail -1), no fault"
  else
    echo "fuzz $name: FAULT (see $dir/$name.log)"; tail -30 "$dir/$name.log"; status=1
  fi
done
exit $status
