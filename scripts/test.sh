#!/usr/bin/env bash
# Runs every test: the native unit tests, the same under ASan+UBSan, the Windows build's
# checks and its tests under Wine. Installs what is missing first.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
status=0
for flavour in native asan windows; do
  echo "== $flavour build"
  dir=$("$root/scripts/build.sh" "$flavour")
  echo "== $flavour tests"
  (cd "$dir" && ctest --output-on-failure -j2) || status=1
done
exit $status
