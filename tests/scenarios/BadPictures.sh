#!/usr/bin/env bash
# Damaged, odd and wrongly named pictures, in each of the three modes: BadPictures.sh FOLDER-OF-THE-PROGRAMS
# What is refused leaves nothing at the service, is named, and gives its reason; the rest of the run goes on.
set -euo pipefail
bin=$1
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Host.sh
. "$(dirname "$0")/Host.sh"
finish() { stop_service; rm -rf "$work"; }
trap finish EXIT
export LC_ALL=C

mkdir "$work/pictures"
cd "$work/pictures"
vips gaussnoise "$work/noise.v" 64 48
vips cast "$work/noise.v" "$work/gray.v" uchar
vips bandjoin "$work/gray.v $work/gray.v $work/gray.v" "$work/rgb.v"
vips copy "$work/rgb.v" "$work/plain.png" --interpretation srgb
vips jpegsave "$work/plain.png" good.jpg --strip
vips gifsave "$work/plain.png" a.gif
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
head -c -2 good.jpg >endless.jpg
patched spoiled.jpg $((size / 2)) '\x5a\xff\xc9\x17\xff\x80'
{ cat good.jpg; head -c 3000 /dev/zero; printf 'words behind the end'; } >trailing.jpg
{ head -c 2 good.jpg; printf '\xff\xff\xff'; tail -c +3 good.jpg; } >fill.jpg
# A directory of a thousand entries, of which the segment holds none.
{ head -c 2 good.jpg; printf '\xff\xe1\x00\x14Exif\0\0MM\0\x2a\0\0\0\x08\x03\xe8\x01\x0f'; tail -c +3 good.jpg; } >exifcut.jpg
# The segment of 2,000 bytes goes on where the file ends.
{ head -c 2 good.jpg; printf '\xff\xe1\x07\xd0Exif\0\0MM\0\x2a\0\0\0\x08'; } >inexif.jpg
: >empty.jpg
cp "$work/plain.png" png.jpg
cp good.jpg jpeg.png
cp good.jpg noraw.nef
cp "$work/plain.tif" tiff.jpg
head -c 33 "$work/plain.png" >cut-png.jpg

refused() { # NAME WORDS
    grep -q "^  .*$1: .*$2" "$work/out" || fail "mode $mode: the list at the end doesn't say of $1: $2"
}

# In each mode, as it lies, pixels intact, processed: "up", or words of the refusal with "_" for blanks. As it
# lies goes whatever begins as a JPEG, GIF or PNG does; in the others the picture must be whole.
cat >"$work/cases" <<'CASES'
good.jpg         up                         up                         up
progressive.jpg  up                         up                         up
arithmetic.jpg   up                         up                         up
cmyk.jpg         up                         up                         up
fill.jpg         up                         up                         up
trailing.jpg     up                         up                         up
endless.jpg      up                         up                         up
spoiled.jpg      up                         copy_the_file_again        copy_the_file_again
exifcut.jpg      up                         up                         up
jpeg.png         up                         up                         up
a.gif            up                         up                         up
noraw.nef        up                         up                         up
png.jpg          up                         not_what_it_appears_to_be  up
tiff.jpg         not_what_it_appears_to_be  not_what_it_appears_to_be  up
empty.jpg        copy_it_again              copy_it_again              copy_it_again
gone.jpg         check_the_name             check_the_name             check_the_name
truncated.jpg    up                         copy_the_file_again        copy_the_file_again
headonly.jpg     up                         copy_the_file_again        copy_the_file_again
inexif.jpg       up                         copy_the_file_again        copy_the_file_again
cut-png.jpg      up                         not_what_it_appears_to_be  copy_the_file_again
twelve.jpg       up                         8_bits_for_each_colour     8_bits_for_each_colour
bomb.jpg         up                         copy_the_file_again        save_a_smaller_one
CASES
mapfile -t names < <(cut -d' ' -f1 "$work/cases")
for mode in 0 1 2; do
    start_service "$bin/flickr-loopback" "store$mode" --token tok:sec
    set_token
    expect 0 settings JPEGMode=$mode
    expect 1 publish --again "${names[@]}"
    ! grep -qE 'Sanitizer|runtime error' "$work/out" || fail "mode $mode: a fault of memory"
    ! grep -q ': \.$' "$work/out" || fail "mode $mode: a reason without words"
    good=0
    while read -r name outcomes; do
        read -ra words <<<"$outcomes"
        case ${words[mode]} in
        up) good=$((good + 1)) ;;
        *) refused "$name" "${words[mode]//_/ }" ;;
        esac
    done <"$work/cases"
    grep -q "^Published $good of ${#names[@]} pictures" "$work/out" || fail "mode $mode: not $good were published"
    [ "$(uploads | jq length)" = "$good" ] || fail "mode $mode: not $good arrived"
    stop_service
done

# A file that goes while the one before it is being uploaded, one that turns into a folder, and one that turns
# into a pipe, which nobody writes to.
mode='1, and files that change'
start_service "$bin/flickr-loopback" store-slow --token tok:sec --fault 'kind=delay&ms=1500&target=upload'
for name in vanishing folder pipe; do cp good.jpg $name.jpg; done
expect 0 settings JPEGMode=1
start_run "$bin/halvora" --profile "$work/profile" publish --again good.jpg vanishing.jpg folder.jpg pipe.jpg progressive.jpg
await_words 'Publishing ".*good.jpg'
rm vanishing.jpg folder.jpg pipe.jpg
mkdir folder.jpg
mkfifo pipe.jpg
code=0
wait "$run" || code=$?
[ $code -eq 1 ] || fail "exit code $code, not 1"
for name in vanishing folder pipe; do refused $name.jpg ''; done
[ "$(uploads | jq length)" = 2 ] || fail 'not two arrived'
echo 'Every picture met the right end.'
