#!/usr/bin/env bash
# Makes a fresh 64-bit Wine prefix at $1 once; later calls find it ready.
set -euo pipefail
prefix="$1"
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
if [ ! -f "$prefix/.kx20-ready" ]; then
  rm -rf "$prefix"
  mkdir -p "$prefix"
  wineboot -i </dev/null >/dev/null 2>&1
  wineserver -w
  touch "$prefix/.kx20-ready"
fi
