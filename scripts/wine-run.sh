#!/usr/bin/env bash
# Runs a Windows program of the build under Wine in the build's own prefix (KX20_WINEPREFIX
# names another one), with a warm wineserver whose streams go nowhere (services Wine starts
# inherit them otherwise), a virtual display for windows, and no view of the host's print
# system. Afterwards the prefix must still hold only the project's printers.
# Usage: wine-run.sh BUILD_DIR PROGRAM [ARGS...]
set -euo pipefail
build=$(cd "$1" && pwd); shift
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine-env.sh"
kx20_wine_env "${KX20_WINEPREFIX:-$build/wineprefix}"
"$here/wine-prefix.sh" "$WINEPREFIX"
wineserver -p </dev/null >/dev/null 2>&1 &
trap 'wineserver -k >/dev/null 2>&1 || true' EXIT
status=0
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
  # No display of the user's: windows go to a virtual one, and programs close them themselves.
  export KX20_VIRTUAL_DISPLAY=1
  # Wine's processes end before the virtual display does, so none reports it gone.
  xvfb-run -a -s "-screen 0 1280x1024x24" \
    sh -c 'status=0; wine "$@" || status=$?; wineserver -k >/dev/null 2>&1; exit $status' wine-run "$@" ||
    status=$?
else
  wine "$@" || status=$?
fi
# The server writes the registry when it ends: stop it, then look at the printers.
wineserver -k >/dev/null 2>&1 || true
wineserver -w
trap - EXIT
kx20_check_prefix_printers "$WINEPREFIX" || status=1
exit $status
