#!/usr/bin/env bash
# Makes a fresh 64-bit Wine prefix at $1 once; later calls find it ready. Either way the prefix
# must hold no printer from outside the project (see wine-env.sh).
set -euo pipefail
prefix="$1"
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine-env.sh"
kx20_wine_env "$prefix"
if [ ! -f "$prefix/.kx20-ready" ]; then
  rm -rf "$prefix"
  mkdir -p "$prefix"
  wineboot -i </dev/null >/dev/null 2>&1
  wineserver -w
  touch "$prefix/.kx20-ready"
fi
# Under a display without a window manager (Xvfb) Wine waits up to 2 s for every top-level
# window it manages to go away (each message box, file dialog and sheet); windows it does not
# manage close at once.
if ! grep -q '^"Managed"="N"' "$prefix/user.reg" 2>/dev/null; then
  wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f </dev/null >/dev/null 2>&1
  wineserver -w
fi
kx20_check_prefix_printers "$prefix"
