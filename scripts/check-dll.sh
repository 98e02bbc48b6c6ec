#!/usr/bin/env bash
# Checks that a built DLL is self-contained (imports system DLLs only) and exports the given
# undecorated names. Usage: check-dll.sh FILE [EXPORT...]
set -eu
file="$1"; shift
dump=$(x86_64-w64-mingw32-objdump -p "$file")
imports=$(sed -n 's/^[[:space:]]*DLL Name: //p' <<<"$dump" | sort -u | tr '\n' ' ')
exports=$(awk '/\[Ordinal\/Name Pointer\] Table/{t=1;next} t&&/^[[:space:]]*\[/{print $NF;next} {t=0}' <<<"$dump" | tr '\n' ' ')
echo "$(basename "$file") imports: $imports"
echo "$(basename "$file") exports: $exports"
for dll in $imports; do
  case "${dll,,}" in
    libstdc++*|libgcc*|libwinpthread*|msvcp*|vcruntime*) echo "runtime DLL imported: $dll" >&2; exit 1 ;;
  esac
done
for name in "$@"; do
  case " $exports " in
    *" $name "*) ;;
    *) echo "missing export: $name" >&2; exit 1 ;;
  esac
done
