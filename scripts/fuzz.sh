#!/usr/bin/env bash
# Builds the fuzz targets (clang, libFuzzer, ASan+UBSan) and runs them.
#
#   fuzz.sh              the test command's step, the same answer every run: each target
#                        replays its committed seeds (tests/fuzz/seeds/<target>/) and regression
#                        inputs (tests/fuzz/regressions/<target>/), then explores from them with a
#                        fixed seed and a fixed number of runs (-seed=1 -runs=N), in a scratch
#                        corpus emptied first.
#   fuzz.sh --long [MINUTES [TARGET...]]
#                        exploration: each target (or the ones named) for MINUTES (default 30)
#                        with a corpus that
#                        grows from run to run in build/fuzz/corpus/<target>/; prints runs and new
#                        coverage per target. A fault is minimised and added to the regressions.
set -euo pipefail
shopt -s nullglob
root=$(cd "$(dirname "$0")/.." && pwd)
mode=step
minutes=30
only=()
if [ "${1:-}" = "--long" ]; then
  mode=long
  minutes="${2:-30}"
  only=("${@:3}")
elif [ $# -gt 0 ]; then
  echo "usage: fuzz.sh [--long [MINUTES [TARGET...]]]" >&2; exit 2
fi
dir=$("$root/scripts/build.sh" fuzz)
# Undefined behaviour found by a target is a fault like any other.
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
common=(-rss_limit_mb=2048 -timeout=60 -print_final_stats=1)
status=0

# The step's exploration length per target: the targets differ by orders of magnitude in speed
# under the sanitizers; these keep the whole step near a minute on two cores.
step_runs() {
  case "$1" in
    fuzz_picture_file) echo 3000 ;;
    fuzz_logo_dither) echo 3000 ;;
    fuzz_entry_records|fuzz_devmode_fill) echo 10000 ;;
    *) echo 30000 ;;
  esac
}

stat_of() { grep -o "^stat::$2: *[0-9]*" "$1" | tail -1 | grep -o '[0-9]*$' || echo 0; }

for target in "$dir"/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  if [ ${#only[@]} -gt 0 ] && [[ ! " ${only[*]} " == *" $name "* ]]; then continue; fi
  seeds="$root/tests/fuzz/seeds/$name"
  regressions="$root/tests/fuzz/regressions/$name"
  mkdir -p "$regressions"
  log="$dir/$name.log"
  if [ "$mode" = step ]; then
    scratch="$dir/step/$name"
    rm -rf "$scratch"; mkdir -p "$scratch"
    # Every regression input once, each by name (a refused picture prints its reason).
    inputs=("$regressions"/*)
    if [ ${#inputs[@]} -gt 0 ]; then
      if ! "$target" "${common[@]}" "${inputs[@]}" >"$dir/$name.regressions.log" 2>&1; then
        echo "fuzz $name: FAULT on a regression input (see $dir/$name.regressions.log)"
        tail -30 "$dir/$name.regressions.log"; status=1; continue
      fi
      grep -h "refused:" "$dir/$name.regressions.log" | sed "s/^/fuzz $name: regression input /" || true
    fi
    runs=$(step_runs "$name")
    # Same runs every time: a fixed seed, no corpus reloading, no comparison operands (they
    # carry addresses), and no address randomisation.
    if setarch -R "$target" "${common[@]}" -reload=0 -use_cmp=0 -seed=1 -runs="$runs" -artifact_prefix="$dir/$name-" \
         "$scratch" "$seeds" "$regressions" >"$log" 2>&1; then
      echo "fuzz $name: ${#inputs[@]} regression and $(ls "$seeds" 2>/dev/null | wc -l) seed inputs, $(stat_of "$log" number_of_executed_units) runs (seed 1), coverage $(grep -o 'cov: [0-9]*' "$log" | tail -1 | grep -o '[0-9]*$'), no fault"
    else
      echo "fuzz $name: FAULT (see $log)"; tail -30 "$log"; status=1
    fi
  else
    corpus="$dir/corpus/$name"
    mkdir -p "$corpus"
    before=$(ls "$corpus" | wc -l)
    if "$target" "${common[@]}" -max_total_time=$((minutes * 60)) -artifact_prefix="$dir/$name-" \
         "$corpus" "$seeds" "$regressions" >"$log" 2>&1; then
      initial=$(grep -o 'INITED cov: [0-9]*' "$log" | head -1 | grep -o '[0-9]*$' || echo 0)
      final=$(grep -o 'cov: [0-9]*' "$log" | tail -1 | grep -o '[0-9]*$' || echo 0)
      echo "fuzz $name: $(stat_of "$log" number_of_executed_units) runs in $minutes min, coverage $initial -> $final (+$((final - initial))), corpus $before -> $(ls "$corpus" | wc -l), no fault"
    else
      echo "fuzz $name: FAULT (see $log)"; tail -30 "$log"; status=1
      for crash in "$dir/$name"-crash-* "$dir/$name"-leak-* "$dir/$name"-oom-* "$dir/$name"-timeout-*; do
        [ -f "$crash" ] || continue
        "$target" -minimize_crash=1 -runs=20000 -exact_artifact_path="$crash.min" "$crash" \
          >"$crash.minimise.log" 2>&1 || true
        kept="$crash"; [ -s "$crash.min" ] && kept="$crash.min"
        cp "$kept" "$regressions/$(sha1sum "$kept" | cut -c1-16)"
        echo "fuzz $name: added $regressions/$(sha1sum "$kept" | cut -c1-16)"
      done
    fi
  fi
done
exit $status
