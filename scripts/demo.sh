#!/usr/bin/env bash
# The main job: builds the Windows driver, installs it into a Wine spooler with a KX20 printer
# on the simulated printer, and shows what applications and the printer see.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
dir=$("$root/scripts/build.sh" windows)
"$root/scripts/wine-run.sh" "$dir" "$dir/kx20demo.exe" "$@"
