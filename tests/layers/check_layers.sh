#!/usr/bin/env bash
# Fails when a source file under src/ includes a room at its own level or above: each room
# may include only the rooms below it (its own files excepted).
set -euo pipefail
src="$1"
rank() {
  case "$1" in
    platform) echo 0 ;; store) echo 1 ;; channel) echo 2 ;; pages) echo 3 ;; devmode) echo 4 ;;
    logos | fonts | firmware | log) echo 5 ;; entry) echo 6 ;; *) echo -1 ;;
  esac
}
bad=0
while IFS= read -r line; do
  file=${line%%:*}
  target=$(sed -E 's/.*#include "([^"/]+)\/.*/\1/' <<<"$line")
  room=$(sed -E "s#^$src/([^/]+)/.*#\\1#" <<<"$file")
  [ "$room" = "$target" ] && continue
  from=$(rank "$room"); to=$(rank "$target")
  [ "$to" -lt 0 ] && continue  # not a room (the resource ids, system headers)
  if [ "$from" -lt 0 ] || [ "$to" -ge "$from" ]; then
    echo "${file#$src/} includes $target/ (room $room may include only rooms below it)"
    bad=1
  fi
done < <(grep -rHE '^#include "[^"/]+/' "$src" --include='*.h' --include='*.cpp')
[ "$bad" -eq 0 ] && echo "every include runs down a layer"
exit "$bad"
