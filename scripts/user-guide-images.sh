#!/usr/bin/env bash
# Regenerates the user guide's pictures (docs/images/*-sheet-*.png) from the main job's output:
# runs the demo with its sheets closing by themselves, on the simulated printer's defaults, and
# copies each page's picture with its metadata stripped, so an unchanged page gives the same
# file. Usage: user-guide-images.sh
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out="$root/build/windows/user-guide"
rm -rf "$out"
KX20_VIRTUAL_DISPLAY=1 "$root/scripts/demo.sh" --out "$out" >"$out.log" ||
  { tail -1 "$out.log"; exit 1; }
mkdir -p "$root/docs/images"
rm -f "$root"/docs/images/*-sheet-*.png
for picture in "$out"/*-sheet-*.png; do
  convert "$picture" -strip "$root/docs/images/$(basename "$picture")"
done
ls "$root"/docs/images/*-sheet-*.png
