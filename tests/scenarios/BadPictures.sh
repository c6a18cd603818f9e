#!/usr/bin/env bash
# Damaged, odd and wrongly named pictures, in each of the three modes: BadPictures.sh FOLDER-OF-THE-PROGRAMS
# Each is published alone. What is refused leaves nothing at the service, is named, and gives its reason; what
# goes up in a mode that writes a new JPEG is one.
set -euo pipefail
bin=$1
work=$(mktemp -d)
service=
finish() { [ -z "$service" ] || kill "$service" 2>/dev/null || true; rm -rf "$work"; }
trap finish EXIT
export LC_ALL=C

mkdir "$work/pictures"
cd "$work/pictures"
vips gaussnoise "$work/noise.v" 64 48
vips cast "$work/noise.v" "$work/gray.v" uchar
vips bandjoin "$work/gray.v $work/gray.v $work/gray.v" "$work/rgb.v"
vips copy "$work/rgb.v" "$work/plain.png" --interpretation srgb
vips jpegsave "$work/plain.png" good.jpg --strip
vips tiffsave "$work/plain.png" "$work/plain.tif"
vips bandjoin "$work/gray.v $work/gray.v $work/gray.v $work/gray.v" "$work/four.v"
vips copy "$work/four.v" "$work/cmyk.tif" --interpretation cmyk
vips jpegsave "$work/cmyk.tif" cmyk.jpg
djpeg good.jpg >"$work/plain.ppm"
cjpeg -progressive "$work/plain.ppm" >progressive.jpg
cjpeg -arithmetic "$work/plain.ppm" >arithmetic.jpg

size=$(stat -c %s good.jpg)
frame=$(grep -aboP '\xff\xc0' good.jpg | head -n 1 | cut -d: -f1)
patched() { # NAME OFFSET BYTES-AS-ESCAPES
    cp good.jpg "$1"
    printf '%b' "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
}
patched twelve.jpg $((frame + 1)) '\xc1\x00\x11\x0c'
patched bomb.jpg $((frame + 5)) '\xff\xdc\xff\xdc'
head -c $((size / 2)) good.jpg >truncated.jpg
head -c $((frame + 4)) good.jpg >headonly.jpg
{ cat good.jpg; head -c 3000 /dev/zero; printf 'words behind the end'; } >trailing.jpg
{ head -c 2 good.jpg; printf '\xff\xff\xff'; tail -c +3 good.jpg; } >fill.jpg
# A directory of a thousand entries, of which the segment holds none.
{ head -c 2 good.jpg; printf '\xff\xe1\x00\x14Exif\0\0MM\0\x2a\0\0\0\x08\x03\xe8\x01\x0f'; tail -c +3 good.jpg; } >exifcut.jpg
# The segment of 2,000 bytes goes on where the file ends.
{ head -c 2 good.jpg; printf '\xff\xe1\x07\xd0Exif\0\0MM\0\x2a\0\0\0\x08'; } >inexif.jpg
: >empty.jpg
cp "$work/plain.png" png.jpg
cp good.jpg jpeg.png
cp "$work/plain.tif" tiff.jpg
head -c 33 "$work/plain.png" >cut-png.jpg

"$bin/flickr-loopback" --port 0 --store "$work/store" --token tok:sec --ready-file "$work/env" >"$work/service.log" 2>&1 &
service=$!
for _ in $(seq 300); do [ ! -f "$work/env" ] || break; sleep 0.1; done
# shellcheck disable=SC1091
. "$work/env"
host() { "$bin/halvora" --profile "$work/profile" "$@"; }
uploads() { curl -sS "${HALVORA_LOOPBACK_GALLERY}_loopback/uploads"; }
printf 'tok\nsec\n' | host account --set-token - >/dev/null

failures=0
fail() {
    printf 'FAILED: mode %s, %s: %s\n' "$mode" "$name" "$1" >&2
    cat "$work/out" >&2
    failures=$((failures + 1))
}
check() { # OUTCOME: "up", or words of the refusal with blanks as "_"
    local before after code=0
    before=$(uploads | jq length)
    host publish "$name" >"$work/out" 2>&1 || code=$?
    after=$(uploads | jq length)
    ! grep -qE 'Sanitizer|runtime error' "$work/out" || fail 'a fault of memory'
    if [ "$1" = up ]; then
        [ $code -eq 0 ] || fail "exit code $code, not 0"
        [ $((after - before)) -eq 1 ] || fail "$((after - before)) pictures arrived, not one"
        return
    fi
    [ $code -eq 1 ] || fail "exit code $code, not 1"
    [ "$after" = "$before" ] || fail 'something arrived'
    grep -q "^  .*$name: .*${1//_/ }" "$work/out" || fail "the list at the end doesn't say \"${1//_/ }\""
    ! grep -q ': \.$' "$work/out" || fail 'a reason without words'
}

# What a file is sent as it lies: whatever begins as a JPEG, GIF or PNG. Otherwise the picture must be whole.
while read -r name asis intact processed; do
    mode=0
    for outcome in "$asis" "$intact" "$processed"; do
        [ "$(cat "$work/mode" 2>/dev/null)" = "$mode" ] || true
        printf '%s\t%s\t%s\n' "$mode" "$name" "$outcome"
        mode=$((mode + 1))
    done
done >"$work/cases" <<'CASES'
good.jpg         up                       up                          up
progressive.jpg  up                       up                          up
arithmetic.jpg   up                       up                          up
cmyk.jpg         up                       up                          up
fill.jpg         up                       up                          up
trailing.jpg     up                       up                          up
exifcut.jpg      up                       up                          up
jpeg.png         up                       up                          up
png.jpg          up                       not_what_it_appears_to_be   up
tiff.jpg         not_what_it_appears_to_be not_what_it_appears_to_be  up
empty.jpg        copy_it_again            copy_it_again               copy_it_again
gone.jpg         check_the_name           check_the_name              check_the_name
truncated.jpg    up                       copy_the_file_again         copy_the_file_again
headonly.jpg     up                       copy_the_file_again         copy_the_file_again
inexif.jpg       up                       copy_the_file_again         copy_the_file_again
cut-png.jpg      up                       not_what_it_appears_to_be   copy_the_file_again
twelve.jpg       up                       8_bits_for_each_colour      8_bits_for_each_colour
bomb.jpg         up                       copy_the_file_again         save_a_smaller_one
CASES
for mode in 0 1 2; do
    host settings JPEGMode=$mode >/dev/null
    while IFS=$'\t' read -r its name outcome; do
        [ "$its" != "$mode" ] || check "$outcome"
    done <"$work/cases"
done

# A file that goes while the run is busy with the one before it.
mode=2
name=vanishing.jpg
cp good.jpg $name
curl -sS -o /dev/null "${HALVORA_LOOPBACK_GALLERY}_loopback/uploads"
mkfifo "$work/words"
code=0
host publish good.jpg $name >"$work/words" 2>&1 &
run=$!
while IFS= read -r line; do
    printf '%s\n' "$line"
    case $line in *'Send '* | *Resample*) rm -f $name ;; esac
done <"$work/words" >"$work/out"
wait $run || code=$?
[ $code -le 1 ] || fail "exit code $code"
if [ $code -eq 1 ]; then
    grep -q "^  .*$name: " "$work/out" || fail 'the file that went away is not named'
fi
uploads | jq -e 'all(.width > 0)' >/dev/null 2>&1 || true

[ $failures -eq 0 ] || exit 1
echo 'Every picture met the right end.'
