#!/usr/bin/env bash
# The main job: builds the Windows driver and its package, installs the driver from the
# package's INF into a Wine spooler with a KX20 printer on the simulated printer, and shows what
# applications and the printer see, then both property sheets. With no display, each page is
# saved as a picture of its window and build/windows/demo/index.html shows them beside the
# spooler's and the printer's reports. The first thing that is not as it should be stops it
# with one line saying what.
# Usage: demo.sh [--model 2|4|7|9] [--firmware-level 0..0xFF] [--identity 8CHARS]
#                [--out FOLDER] [--no-sheets]     (defaults: model 9, level 0x40, KX20SIM1)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
dir=$("$root/scripts/build.sh" windows)
"$root/scripts/wine-run.sh" "$dir" "$dir/kx20demo.exe" "$@"
