#!/usr/bin/env bash
# Checks a driver package: every file its INF names (the install section's driver,
# configuration, data and help files, each CopyFiles list, the source disk files) must be in
# the INF's folder. Usage: check-package.sh PACKAGE_FOLDER/kx20.inf
set -euo pipefail
inf="$1"
folder=$(dirname "$inf")
[ -f "$inf" ] || { echo "check-package: $inf does not exist" >&2; exit 1; }
# Section names are lower-cased; comments and CRs removed; key=value split.
names=$(tr -d '\r' <"$inf" | sed 's/;.*$//' | awk '
  /^[[:space:]]*\[/ { s = tolower($0); gsub(/^[[:space:]]*\[|\][[:space:]]*$/, "", s); next }
  /^[[:space:]]*$/ { next }
  {
    key = $0; value = ""
    if (index($0, "=")) { key = substr($0, 1, index($0, "=") - 1); value = substr($0, index($0, "=") + 1) }
    gsub(/^[[:space:]]+|[[:space:]]+$/, "", key); gsub(/^[[:space:]]+|[[:space:]]+$/, "", value)
    k = tolower(key)
    if (k == "driverfile" || k == "configfile" || k == "datafile" || k == "helpfile") files[value] = 1
    if (k == "copyfiles") { n = split(value, lists, ","); for (i = 1; i <= n; i++) { l = lists[i]; gsub(/[[:space:]]/, "", l); if (l ~ /^@/) files[substr(l, 2)] = 1; else copy[tolower(l)] = 1 } }
    if (s ~ /^sourcedisksfiles/) files[key] = 1
    entries[s] = entries[s] "\n" key
  }
  END {
    for (c in copy) { if (!(c in entries)) print "[" c "]"; n = split(entries[c], e, "\n"); for (i = 2; i <= n; i++) { split(e[i], parts, ","); files[parts[1]] = 1 } }
    for (name in files) if (name != "") print name
  }')
status=0
for name in $names; do
  case "$name" in
    \[*) echo "check-package: $(basename "$inf") copies the file list $name, which it lacks" >&2; status=1; continue ;;
  esac
  if ! ls "$folder" | grep -qixF -- "$name"; then
    echo "check-package: $(basename "$inf") names $name, which the package $folder lacks" >&2
    status=1
  fi
done
[ -n "$names" ] || { echo "check-package: $(basename "$inf") names no file" >&2; status=1; }
exit $status
