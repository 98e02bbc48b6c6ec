#!/usr/bin/env bash
# Installs the Debian packages the builds and tests need, when they are missing.
set -euo pipefail
packages=(cmake ninja-build g++ googletest libgtest-dev libbenchmark-dev libstb-dev
          g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine64 xvfb xauth clang)
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
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
