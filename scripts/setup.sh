#!/usr/bin/env bash
# Installs the Debian packages the builds and tests need, when they are missing, then checks
# that every program the scripts call is on the PATH.
set -euo pipefail
packages=(cmake ninja-build g++ googletest libgtest-dev libbenchmark-dev libjpeg62-turbo-dev libpng-dev libgif-dev
          g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine wine64 xvfb xauth
          imagemagick clang cups-daemon cups-client python3 util-linux)
# The programs the scripts and build files run, with the package that brings each.
programs=(cmake:cmake ninja:ninja-build g++:g++ clang++:clang
          x86_64-w64-mingw32-g++-posix:g++-mingw-w64-x86-64-posix
          x86_64-w64-mingw32-objdump:binutils-mingw-w64-x86-64
          wine:wine wineboot:wine wineserver:wine64 xvfb-run:xvfb xauth:xauth import:imagemagick
          cupsd:cups-daemon lpadmin:cups-client lp:cups-client lpstat:cups-client python3:python3
          setarch:util-linux)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then
    echo "Run as root (or install these packages): ${missing[*]}" >&2
    exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  # The tests run a private CUPS scheduler of their own; cups-daemon's install would start the
  # machine's. No service is started while these packages go in (Debian's policy-rc.d).
  policy=/usr/sbin/policy-rc.d
  if [ ! -e "$policy" ]; then
    printf '#!/bin/sh\nexit 101\n' >"$policy" && chmod 755 "$policy"
    trap 'rm -f "$policy"' EXIT
  fi
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
absent=0
for entry in "${programs[@]}"; do
  program=${entry%%:*}
  if ! command -v "$program" >/dev/null; then
    echo "setup: '$program' is not on the PATH after installing; it comes from the package '${entry#*:}'" >&2
    absent=1
  fi
done
exit $absent
