#!/usr/bin/env bash
# Configures and builds one flavour: native | asan | fuzz | windows. Prints the build folder.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
flavour="${1:-native}"
dir="$root/build/$flavour"
case "$flavour" in
  native)  args=(-DCMAKE_BUILD_TYPE=RelWithDebInfo) ;;
  asan)    args=(-DCMAKE_BUILD_TYPE=Debug -DKX20_SANITIZE=ON -DKX20_BENCH=OFF) ;;
  fuzz)    args=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DKX20_FUZZ=ON -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++) ;;
  windows) args=(-DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake") ;;
  *) echo "unknown flavour $flavour" >&2; exit 2 ;;
esac
cmake -S "$root" -B "$dir" -G Ninja "${args[@]}" >/dev/null
ninja -C "$dir" -j2 >&2
echo "$dir"
