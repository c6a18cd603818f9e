#!/usr/bin/env bash
# From the command line to the service and back: Publish.sh FOLDER-OF-THE-PROGRAMS
# A new profile, an account, pictures with texts, bad files among them, a damaged profile, a cancel.
# Every step says what it saw; the first that isn't as promised ends the test.
set -euo pipefail
bin=$1
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Host.sh
. "$(dirname "$0")/Host.sh"
finish() { stop_service; rm -rf "$work"; }
trap finish EXIT

mkdir "$work/pictures"
blank_picture "$work/blank.jpg"
cd "$work/pictures"
# On this system a colon belongs to a name like any letter.
first=$'Ufer \xe6\xb5\xb7 12:30.jpg'
cp "$work/blank.jpg" "$first"
cp "$work/blank.jpg" $'caf\xe9.jpeg'
exiv2 -M'set Xmp.dc.title lang="x-default" Am Ufer 🌊' -M'set Iptc.Application2.Keywords golden hour' \
    -M'set Exif.Photo.UserComment charset=Unicode größer' "$first"
echo 'x' | cat "$work/blank.jpg" - >"$work/pictures/raw.jpg"
cp raw.jpg raw.tif
start_service "$bin/flickr-loopback" store --token tok:sec

# Without an account nothing is tried.
expect 1 publish "$first"
says 'No Flickr account'
expect 2 publish "$work"
says '--recursive'
expect 2 settings JPEGMode=3
set_token
expect 0 account
says 'Authorized:    yes'
is_silent_about tok
expect 0 settings JPEGMode=0
expect 0 status
says 'Send JPEG files intact. [Settings...: halvora settings]'

# Good and bad files together: what can be published is, byte for byte and with its texts.
: >empty.jpg
ln -s nowhere.jpg broken.jpg
echo 'no picture at all' >wrong.jpg
expect 1 publish -- * gone.jpg
says 'Published 3 of 7 pictures. 4 files were not uploaded:'
for name in empty.jpg broken.jpg wrong.jpg gone.jpg; do grep -q "^  .*$name: " "$work/out" || fail "$name isn't named"; done
says 'Left out, since raw.jpg is the same picture: raw.tif.'
! grep -q $'\x1b' "$work/out" || fail 'control codes in a pipe'
[ "$(uploads | jq length)" = 3 ] || fail 'not three uploads'
for name in "$first" $'caf\xe9.jpeg' raw.jpg; do
    sum=$(sha256sum <"$name")
    uploads | jq -e --arg sum "${sum%% *}" 'any(.sha256 == $sum)' >/dev/null || fail "$name did not arrive as it is"
done
uploads | jq -e --arg name "$first" 'any(.file_name == $name and .title == "Am Ufer 🌊" and .description == "größer" and .tag_list == ["golden hour"])' >/dev/null ||
    fail 'the texts did not arrive'
stop_service

# A damaged account file is kept, and named.
echo garbage >"$work/profile/init-data.bin"
start_service "$bin/flickr-loopback" store --token tok:sec
expect 1 publish raw.jpg
says 'damaged'
[ "$(cat "$work/profile/init-data.bin.damaged-1")" = garbage ] || fail 'the damaged file is not kept'
set_token
stop_service

# Nor are settings replaced by their defaults unseen: not even the second call publishes.
start_service "$bin/flickr-loopback" store3 --token tok:sec
head -c 100 "$work/profile/registry.reg" >"$work/cut"
cp "$work/cut" "$work/profile/registry.reg"
expect 1 publish raw.jpg
says "registry.reg.damaged-1; all settings have their defaults now"
cmp -s "$work/cut" "$work/profile/registry.reg.damaged-1" || fail 'the damaged settings are not kept'
for command in 'publish raw.jpg' status authorize; do
    # shellcheck disable=SC2086
    expect 1 $command
    says 'nothing was done by the defaults'
done
[ "$(uploads | jq length)" = 0 ] || fail 'a picture was sent by the defaults'
expect 0 settings JPEGMode=2
says 'JPEGMode=2'

# A size that another language wrote, read without a language.
language=de_DE.UTF-8 expect 0 settings JPEGLongDimension=1024
says 'JPEGLongDimension=1.024 px'
language=C expect 0 status
says 'is stored as "1.024 px" and means 1 px here: 1 pixel. In a language with the other decimal separator it means 1024 pixels'
language=C expect 1 publish raw.jpg
says 'would make pictures at most 1 pixel long. Nothing was sent.'
[ "$(uploads | jq length)" = 0 ] || fail 'a picture of one pixel was sent'
language=C expect 0 publish --again --allow-small raw.jpg
language=C expect 0 settings JPEGLongDimension= JPEGMode=0
stop_service

# Faults of the profile and of the output are said once, in words.
mkdir -p "$work/barred/registry.reg.lock"
code=0
"$bin/halvora" --profile "$work/barred" status >"$work/out" 2>&1 || code=$?
[ "$code $(wc -l <"$work/out")" = '1 1' ] || fail "a new profile that can't be written: code $code"
says 'can'"'"'t be written: Access was denied.'
! "$bin/halvora" --profile "$work/profile" settings >/dev/full 2>"$work/out" || fail 'a full disk is no failure'
says 'No space left on device'

# A termination reaches a transfer whose answer doesn't come; what was not tried is named.
# A hangup that was ignored at the start, as under nohup, changes nothing.
start_service "$bin/flickr-loopback" store2 --token tok:sec --fault 'kind=delay&ms=60000&target=upload'
start_run env --ignore-signal=HUP "$bin/halvora" --profile "$work/profile" publish --again raw.jpg "$first"
await_words 'Publishing "'
kill -HUP "$run"
sleep 0.5
kill -0 "$run" || fail 'a hangup that is ignored ended the run'
is_silent_about Cancelling
kill -TERM "$run"
code=0
wait "$run" || code=$?
[ $code -eq 3 ] || fail "exit code $code after a cancel, not 3"
says 'not tried, the run was cancelled'
says '1 file may be published or not'
stop_service
echo 'Everything arrived as it was meant.'
