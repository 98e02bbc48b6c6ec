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
kx20_check_prefix_printers "$prefix"
