#!/usr/bin/env bash
# Every picture and link of the main job's HTML page exists: src and href name files beside the
# page (each a PNG file when it is a picture) or an id on the page. Also every page of both
# sheets is pictured. Usage: demo_page_check.sh PAGE.html
set -euo pipefail
page="$1"
folder=$(dirname "$page")
status=0
refs=$(grep -o -E '(src|href)="[^"]*"' "$page" | sed -E 's/^(src|href)="(.*)"$/\1 \2/')
[ -n "$refs" ] || { echo "$page has no picture or link"; exit 1; }
while read -r kind target; do
  case "$target" in
    \#*) grep -q "id=\"${target#\#}\"" "$page" || { echo "link $target: no such id on the page"; status=1; } ;;
    *) if [ ! -s "$folder/$target" ]; then echo "$kind $target: no such file"; status=1
       elif [ "$kind" = src ] && ! head -c 8 "$folder/$target" | grep -q PNG; then echo "$target is not a PNG file"; status=1; fi ;;
  esac
done <<<"$refs"
for title in Logos Messages Fonts Maintenance Log-Settings Device-Settings Options Receipt-Station Document-Station; do
  grep -q "src=\"[a-z]*-sheet-[0-9]-$title.png\"" "$page" || { echo "no picture of the $title page"; status=1; }
done
[ $status -eq 0 ] && echo "$(wc -l <<<"$refs") pictures and links on $page, all there"
exit $status
