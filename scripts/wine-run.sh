#!/usr/bin/env bash
# Runs a Windows program of the build under Wine in the build's own prefix, with a warm
# wineserver whose streams go nowhere (services Wine starts inherit them otherwise), and a
# virtual display for windows. Usage: wine-run.sh BUILD_DIR PROGRAM [ARGS...]
set -euo pipefail
build=$(cd "$1" && pwd); shift
export WINEPREFIX="$build/wineprefix"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
here=$(cd "$(dirname "$0")" && pwd)
"$here/wine-prefix.sh" "$WINEPREFIX"
wineserver -p </dev/null >/dev/null 2>&1 &
trap 'wineserver -k >/dev/null 2>&1 || true' EXIT
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
  # No display of the user's: windows go to a virtual one, and programs close them themselves.
  export KX20_VIRTUAL_DISPLAY=1
  xvfb-run -a -s "-screen 0 1280x1024x24" wine "$@"
else
  wine "$@"
fi
