#!/usr/bin/env bash
# Times the entry points applications call most and an idle device sheet under Wine, against
# the simulated printer, in the Windows build's own prefix. Not a test: it prints a table.
# Usage: bench/wine_bench.sh [--calls N] [--idle-seconds S]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh" >/dev/null
build=$("$root/scripts/build.sh" windows)
. "$root/scripts/wine-env.sh"
kx20_wine_env "$build/wineprefix"
"$root/scripts/wine-prefix.sh" "$WINEPREFIX"
wineserver -p </dev/null >/dev/null 2>&1 &
trap 'wineserver -k >/dev/null 2>&1 || true' EXIT
# The server of this prefix: the one whose environment names it.
server=""
for _ in $(seq 50); do
  for pid in $(pgrep -x wineserver64 || true) $(pgrep -x wineserver || true); do
    if { tr '\0' '\n' <"/proc/$pid/environ"; } 2>/dev/null | grep -qx "WINEPREFIX=$WINEPREFIX"; then
      server=$pid
    fi
  done
  [ -n "$server" ] && break
  sleep 0.1
done
run=(wine "$build/kx20_wine_bench.exe" "$@" --wineserver-pid "${server:-0}")
if [ -z "${DISPLAY:-}" ]; then
  xvfb-run -a -s "-screen 0 1280x1024x24" "${run[@]}"
else
  "${run[@]}"
fi
