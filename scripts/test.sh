#!/usr/bin/env bash
# Runs every test: the native unit tests, the same under ASan+UBSan, the fuzz step (seeds,
# regressions, a fixed-seed exploration), the Windows build's checks and its tests under Wine.
# Installs what is missing first, and ends with one summary line over all ctest runs.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
status=0
passed=0
failed=0
# Every program the scripts run must come from a package that setup.sh installs: a program
# installed by hand passes here and fails on a fresh machine.
echo "== setup packages"
checker="$root/../shared/tools/check-setup-packages"
if [ -x "$checker" ]; then
  if "$checker" "$root"; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
else
  echo "setup package check not found at $checker; skipped"
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
for flavour in native asan windows; do
  echo "== $flavour build"
  dir=$("$root/scripts/build.sh" "$flavour")
  echo "== $flavour tests"
  (cd "$dir" && ctest --output-on-failure -j2) | tee "$log" || status=1
  line=$(grep -E '[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$log" | tail -1 || true)
  if [ -z "$line" ]; then status=1; continue; fi
  total=$(sed -E 's/.* out of ([0-9]+).*/\1/' <<<"$line")
  bad=$(sed -E 's/.* ([0-9]+) tests? failed.*/\1/' <<<"$line")
  passed=$((passed + total - bad))
  failed=$((failed + bad))
done
echo "== fuzz targets"
"$root/scripts/fuzz.sh" || { status=1; failed=$((failed + 1)); }
[ "$failed" -eq 0 ] || status=1
echo "$passed passed, $failed failed"
exit $status
