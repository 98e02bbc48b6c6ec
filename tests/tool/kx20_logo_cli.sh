#!/usr/bin/env bash
# The kx20 tool's logo and message groups from the outside: exit statuses, output files and
# their sizes, on pictures written here byte by byte. Usage: kx20_logo_cli.sh KX20_BINARY
set -uo pipefail
kx20=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
failures=0

byte() { printf "\\$(printf '%03o' "$(($1 & 255))")"; }
le32() { byte "$1"; byte $(($1 >> 8)); byte $(($1 >> 16)); byte $(($1 >> 24)); }
le16() { byte "$1"; byte $(($1 >> 8)); }
# A 24-bit bitmap of one colour: bmp WIDTH HEIGHT B G R
bmp() {
    local w=$1 h=$2 row=$(( ($1 * 3 + 3) / 4 * 4 )) y x
    printf 'BM'; le32 $((54 + row * h)); le32 0; le32 54
    le32 40; le32 "$w"; le32 "$h"; le16 1; le16 24; le32 0; le32 $((row * h)); le32 3780; le32 3780
    le32 0; le32 0
    for ((y = 0; y < h; y++)); do
        for ((x = 0; x < w; x++)); do byte "$3"; byte "$4"; byte "$5"; done
        for ((x = w * 3; x < row; x++)); do printf '\x00'; done
    done
}

expect() {  # expect STATUS DESCRIPTION -- COMMAND...
    local want=$1 what=$2; shift 3
    "$@" >/dev/null 2>"$dir/err"
    local got=$?
    if [ "$got" -ne "$want" ]; then
        echo "FAIL: $what: exit $got, expected $want ($(cat "$dir/err"))"
        failures=$((failures + 1))
    fi
}
size_is() {  # size_is FILE BYTES DESCRIPTION
    local got
    got=$(stat -c %s "$1" 2>/dev/null || echo missing)
    if [ "$got" != "$2" ]; then
        echo "FAIL: $3: $got bytes, expected $2"
        failures=$((failures + 1))
    fi
}

bmp 100 10 0 0 0 >"$dir/black.bmp"
printf 'not a picture at all' >"$dir/text.bmp"

expect 0 "convert full" -- "$kx20" logo convert "$dir/black.bmp" --form full -o "$dir/full.png"
if [ "$(head -c 4 "$dir/full.png" | od -An -tx1 | tr -d ' ')" != "89504e47" ]; then
    echo "FAIL: convert did not write a PNG"; failures=$((failures + 1))
fi

# 100 x 10 without scaling: a grid of 128 x 16, 256 raster bytes and 20 of framing.
expect 0 "payload full" -- "$kx20" logo payload "$dir/black.bmp" --number 40 --form full --no-scale -o "$dir/full.bin"
size_is "$dir/full.bin" 276 "full payload"
# Row 0: 100 dots (12 bytes and 4 bits), then the blank padding; the end byte last.
if [ "$(od -An -tx1 -j19 -N14 "$dir/full.bin" | tr -d ' \n')" != "fffffffffffffffffffffffff000" ] ||
   [ "$(tail -c 1 "$dir/full.bin" | od -An -tx1 | tr -d ' ')" != "ff" ]; then
    echo "FAIL: full payload raster"; failures=$((failures + 1))
fi
expect 0 "payload narrow" -- "$kx20" logo payload "$dir/black.bmp" --number 1 --form narrow -o "$dir/narrow.bin"
size_is "$dir/narrow.bin" 276 "narrow payload (never enlarged: 128 x 16)"

expect 0 "message" -- "$kx20" message payload 25 "Hi" -o "$dir/msg.bin"
size_is "$dir/msg.bin" 67 "message payload"

expect 2 "logo number 41" -- "$kx20" logo payload "$dir/black.bmp" --number 41 --form full -o "$dir/x.bin"
expect 2 "message number 0" -- "$kx20" message payload 0 "x" -o "$dir/x.bin"
expect 2 "unknown form" -- "$kx20" logo convert "$dir/black.bmp" --form wide -o "$dir/x.png"
expect 2 "missing output" -- "$kx20" logo convert "$dir/black.bmp" --form full
expect 2 "unreadable picture" -- "$kx20" logo convert "$dir/none.bmp" --form full -o "$dir/x.png"
expect 1 "not a picture" -- "$kx20" logo convert "$dir/text.bmp" --form full -o "$dir/x.png"
# A JPEG whose coded data ends inside a block (it once made the old decoder shift past 32 bits):
# refused, with the decoder's reason.
tail -c +2 "$(dirname "$0")/../fuzz/regressions/fuzz_picture_file/stb-shift-exponent-jpeg" >"$dir/cut.jpg"
expect 1 "JPEG with cut coded data" -- "$kx20" logo convert "$dir/cut.jpg" --form full -o "$dir/cut.png"
if ! grep -q "JPEG: Corrupt JPEG data" "$dir/err"; then
    echo "FAIL: the cut JPEG was refused without its reason"; failures=$((failures + 1))
fi
expect 2 "unknown group" -- "$kx20" logos convert
if [ -e "$dir/x.bin" ] || [ -e "$dir/x.png" ]; then
    echo "FAIL: a refused command wrote its output"; failures=$((failures + 1))
fi

[ "$failures" -eq 0 ] && echo "kx20 logo/message: all checks passed"
exit $((failures > 0))
