#!/usr/bin/env bash
# The kx20 tool's font and firmware groups on files made here: what they print, the jobs they
# write and their exit status (0 valid / written, 1 invalid, 2 usage or read error).
# Usage: kx20_font_firmware_test.sh PATH_TO_KX20
set -u
kx20="$1"
dir=$(mktemp -d); trap 'rm -rf "$dir"' EXIT
cd "$dir"
failures=0

le16() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $(($1 >> 8)))"; }
le32() { le16 $(($1 & 65535)); le16 $(($1 >> 16)); }
# A tagged record: tag, then the data given as printf escapes.
rec() { local data; data=$(printf "$2" | od -An -v -tx1 | wc -w); le16 "$1"; le16 "$data"; printf "$2"; }
zeros() { head -c "$1" /dev/zero; }
# A double-byte character record with both glyphs (24x24 thermal, 16x16 impact).
dbcs_char() { le16 245; le16 112; printf '\x00\x00'"$1"'\x01\x48\x01\x20'; zeros 104; }

tagged() {  # $1: thermal width
  rec 234 '240305'; rec 235 '\x01\x00'; rec 236 '\x65\x05'; rec 237 '\x81\xfe'
  rec 237 '\x00\x00'; rec 237 '\x00\x00'; rec 239 "$(printf '\\x%02x\\x00' "$1")"; rec 240 '\x18\x00'
  rec 241 '\x10\x00'; rec 242 '\x10\x00'; rec 243 '\x00\x00'; rec 244 '\x00\x00'; rec 247 '\x01\x00'
  dbcs_char '\x81\x40'; dbcs_char '\x81\x41'; dbcs_char '\x81\x42'
  rec 254 ''
}
headered() {  # $1: dot size; two lead bytes x two second bytes
  printf 'KVOPosDBCSFont  '; zeros 6; le16 65535; le32 "$1"; le32 24
  printf '\x81\x9f\xe0\xfc\x00\x00\x00\x00'; zeros 8
  printf '\x88\x89\x00\x00\x00\x00\x00\x00\x40\x41\x00\x00\x00\x00\x00\x00'
  zeros 384 | tr '\0' '\125'  # four glyphs, every other dot
}

tagged 24 >prc.fon
tagged 25 >wide.fon
headered 24 >jpn24.fnt
cp jpn24.fnt plain24.fnt
printf 'EcLevel 5A\r\nBootLevel 1\r\nDevType 1\r\n' >fw.bin; zeros 964 >>fw.bin

# expect STATUS "TEXT" COMMAND...: the exit status and a line of the output (both streams).
expect() {
  local want=$1 text=$2; shift 2
  local out rc
  out=$("$kx20" "$@" 2>&1); rc=$?
  if [ "$rc" != "$want" ] || ! grep -qF -- "$text" <<<"$out"; then
    echo "FAIL: kx20 $* -> $rc (expected $want and '$text')"; echo "$out" | sed 's/^/    /'
    failures=$((failures + 1))
  fi
}

expect 0 "double-byte characters: 3 (thermal 3, impact 3)" font inspect prc.fon
expect 1 "Invalid THERMAL_WIDTH value - 25!" font inspect wide.fon
expect 0 "station: thermal, characters: 4" font inspect jpn24.fnt
expect 1 "no region mark" font inspect plain24.fnt
expect 1 "does not begin with the font magic" font inspect prc.fon --model 2
expect 2 "No such file" font inspect missing.fon
expect 2 "unknown option" font inspect prc.fon --colour
expect 1 "dot size 24 does not fit the impact station" font payload jpn24.fnt --station impact -o job.bin
expect 0 "job.bin: 479 bytes" font payload jpn24.fnt --station thermal -o job.bin
# Pre-settings 152, a group per station (18 + 3 x 74, 18 + 3 x 34), post-settings 93.
expect 0 "tagged.bin: 605 bytes" font payload prc.fon --station thermal -o tagged.bin
expect 0 "the file holds the newer level 5A." firmware check fw.bin --model 4 --level 0x50
expect 1 "does not fit model code 2" firmware check fw.bin --model 2
expect 2 "--model N is needed" firmware check fw.bin
expect 0 "fwjob.bin: 1031 bytes" firmware payload fw.bin -o fwjob.bin
expect 1 "valid: no" firmware check jpn24.fnt --model 9

# The job is the file between the marker with 0x6B and the closing marker.
if ! cmp -s <(tail -c +17 fwjob.bin | head -c 1000) fw.bin; then
  echo "FAIL: the firmware job does not carry the file unchanged"; failures=$((failures + 1))
fi
[ "$failures" = 0 ] && echo "kx20 font and firmware commands: all checks passed"
exit $((failures != 0))
