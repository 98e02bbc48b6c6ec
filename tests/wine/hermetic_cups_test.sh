#!/usr/bin/env bash
# The host's CUPS client points at a private cupsd whose default queue is named KX20, the way a
# till that owns the printer is set up. Wine runs started from that environment, in a prefix
# made under it, must still see only the project's printer, install and print to it, and send
# nothing to the queue; the queue itself is shown to deliver, so a leak could not pass unseen.
# Usage: hermetic_cups_test.sh BUILD_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
root=$(cd "$(dirname "$0")/../.." && pwd)
work="$build/hermetic-cups"
. "$root/scripts/private-cupsd.sh"
kx20_private_cupsd_stop "$work"
rm -rf "$work"
trap 'kx20_private_cupsd_stop "$work"' EXIT
kx20_private_cupsd_start "$work"
export CUPS_SERVER="$work/cups.sock" KX20_WINEPREFIX="$work/wineprefix"

echo "rig check" | lp -d KX20 >/dev/null
for i in $(seq 100); do grep -q "rig check" "$work/received" && break; sleep 0.1; done
grep -q "rig check" "$work/received" || { echo "FAIL: the private KX20 queue delivers nothing"; exit 1; }
: >"$work/received"

# The jobs, printer commands and installs of the suite, then the main job, in a prefix made here.
"$root/scripts/wine-run.sh" "$build" "$build/kx20_wine_tests.exe" \
  --gtest_filter='PrinterChannel.*:PrinterEvents.*:SpoolerDevMode.*:SpoolerCapabilities.*:DriverInstall*'
# The main job closes its sheets itself here, on any display; its page is checked too.
KX20_VIRTUAL_DISPLAY=1 "$root/scripts/wine-run.sh" "$build" "$build/kx20demo.exe" --out "$work/demo" \
  >"$work/demo.out" || { cat "$work/demo.out"; echo "FAIL: the main job under the host's KX20 queue"; exit 1; }
"$root/tests/wine/demo_page_check.sh" "$work/demo/index.html"
sleep 1
if [ -s "$work/received" ]; then
  echo "FAIL: $(wc -c <"$work/received") bytes reached the host's KX20 queue"; exit 1
fi
jobs=$(lpstat -W all -o KX20 | wc -l)
[ "$jobs" -eq 1 ] || { echo "FAIL: the host's KX20 queue holds $jobs jobs, not the rig's one"; lpstat -W all -o; exit 1; }
echo "the host's KX20 queue received nothing; the prefix held only the project's printer"
