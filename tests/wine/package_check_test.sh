#!/usr/bin/env bash
# The built package passes its check; the same package whose INF copies one more file, or
# names a help file, that it lacks fails it, naming the file.
set -euo pipefail
package="$1"
check="$(dirname "$0")/../../scripts/check-package.sh"
"$check" "$package/kx20.inf"
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT
for extra in 's/^\[KX20_Files\]\r$/&\nkvorsenu.hlp\r/' 's/^DataFile=.*$/&\nHelpFile=KVORSENU.HLP\r/'; do
  cp "$package"/* "$tmp"/
  sed -i "$extra" "$tmp/kx20.inf"
  if out=$("$check" "$tmp/kx20.inf" 2>&1); then echo "not refused: $extra"; exit 1; fi
  grep -qi 'names kvorsenu.hlp, which the package' <<<"$out" || { echo "unexpected: $out"; exit 1; }
done
echo "refused both"
