#!/usr/bin/env bash
# Runs that are broken off, refused, cut off or repeated: Journal.sh FOLDER-OF-THE-PROGRAMS
# Whatever happens to a run, the same command takes it up, and nothing is published twice.
set -euo pipefail
bin=$1
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Host.sh
. "$(dirname "$0")/Host.sh"
finish() { stop_service; rm -rf "$work"; }
trap finish EXIT
export LC_ALL=C.UTF-8

halvora() { "$bin/halvora" --profile "$work/profile" "$@" </dev/null; }
arrived() { [ "$(uploads | jq length)" = "$1" ] || fail "$(uploads | jq length) arrived, not $1"; }
outcomes() { cut -f1 "$work/lines" | sort | uniq -c | awk '{ printf "%s%s", $2, $1 }'; }

mkdir "$work/pictures"
blank_picture "$work/blank.jpg"
cd "$work/pictures"
# Pictures that differ in the bytes behind their end.
for number in $(seq 10 29); do { cat "$work/blank.jpg"; printf '%s' "$number"; } >"$number.jpg"; done
start_service "$bin/flickr-loopback" store --token tok:sec
set_token
halvora settings JPEGMode=0 >/dev/null

# A dry run sends nothing, and says what it would.
expect 0 publish -n 10.jpg 11.jpg
says 'A run would publish 2 ('
arrived 0
TERM=xterm script -qec "'$bin/halvora' --profile '$work/profile' publish -n 10.jpg 11.jpg" /dev/null </dev/null >"$work/out"
says 'Files looked at: 1'

# What was published is left out, also under another name; its page is told; --again sends it.
halvora publish --porcelain 10.jpg 11.jpg >"$work/lines" 2>"$work/out" || fail 'not published'
[ "$(outcomes)" = published2 ] || fail "the lines tell $(outcomes)"
id=$(cut -f3 "$work/lines" | head -n 1)
uploads | jq -e --arg id "$id" 'any((.id | tostring) == $id)' >/dev/null || fail "the service has no photo $id"
cp 10.jpg copy.jpg
expect 0 publish 10.jpg 11.jpg copy.jpg
says "copy.jpg was published on $(date +%Y-%m-%d)"
says '3 pictures are on the account already and were left out.'
expect 0 history 10.jpg
says "flickr.com/photo.gne?id=$id"
halvora history --json >"$work/out"
jq -e 'length == 2 and all(.outcome == "published" and (.sha256 | length) == 64)' "$work/out" >/dev/null || fail 'no such history'
expect 1 history 12.jpg
expect 0 publish -v --again 10.jpg
says '10.jpg is now https://'
arrived 3
# A picture that was worked on is another one; a setting for one run isn't kept.
printf 'more' >>11.jpg
expect 0 publish --set SafetyLevel=moderate 11.jpg
uploads | jq -e 'map(.safety_level) | sort == [1, 1, 1, 2]' >/dev/null || fail 'the setting had no effect'
expect 0 settings SafetyLevel
says 'SafetyLevel=0'
expect 2 publish --set SafetyLevel=maybe 12.jpg
arrived 4
stop_service

# A refusal of one file: the rest is published in the same command. A refusal of the account ends it.
start_service "$bin/flickr-loopback" store2 --token tok:sec --fault 'kind=error&code=5&message=Filetype&skip=1&target=upload'
expect 1 publish 1[0-4].jpg --again
says 'Published 4 of 5 pictures. 1 file was not uploaded:'
says '11.jpg: Flickr Status = 5'
arrived 4
stop_service
start_service "$bin/flickr-loopback" store3 --token tok:sec --fault 'kind=error&code=6&message=Limit&skip=1&target=upload'
expect 1 publish 1[5-9].jpg
says 'Published 1 of 5 pictures.'
says '3 files were not tried'
says 'limit is reached'
arrived 1

# What is left of a run can be handed to another.
halvora publish --porcelain -n 1[5-9].jpg >"$work/lines" 2>"$work/out" || fail 'no dry run'
[ "$(outcomes)" = left-out1to-send4 ] || fail "the lines tell $(outcomes)"
"$bin/halvora" --profile "$work/profile" publish --porcelain --files-from - <"$work/lines" >"$work/more" 2>"$work/out" || fail 'the rest was not published'
cp "$work/more" "$work/lines"
[ "$(outcomes)" = published4 ] || fail "the lines tell $(outcomes)"
arrived 5
printf '1\n.jpg\0' >"$work/list"
cp 20.jpg $'1\n.jpg'
expect 0 publish -0 --files-from "$work/list"
arrived 6

# A run that is killed while the service is at work: the picture on its way is unknown, and isn't sent unasked.
admin faults -d 'kind=delay&ms=5000&target=upload' >/dev/null
start_run "$bin/halvora" --profile "$work/profile" publish 21.jpg 22.jpg
await_words 'Publishing "'
sleep 1
kill -KILL "$run"
wait "$run" || true
expect 1 publish 21.jpg 22.jpg
says '--unknown skip leaves them out'
says 'Published 1 of 2 pictures. 1 file may be published or not'
expect 0 history 21.jpg
says 'unknown'
expect 0 publish --unknown send 21.jpg 22.jpg
says 'Published 1 picture.'
stop_service

# Pictures that are handed in: their tickets are looked up later.
start_service "$bin/flickr-loopback" store4 --token tok:sec
cp "$work/blank.jpg" 23.jpg
halvora settings AsyncUpload=1 >/dev/null
expect 0 publish 23.jpg 24.jpg
says 'Handed in 2 pictures'
expect 0 history 23.jpg
says 'handed-in'
expect 0 history --refresh 23.jpg
id=$(uploads | jq -r 'map(select(.file_name == "23.jpg"))[0].id')
says "$id"
halvora settings AsyncUpload=0 >/dev/null
stop_service

# A service that is gone: the run stops after five pictures, or goes on when it is back.
expect 1 publish 2[5-9].jpg 1[0-4].jpg --again
says '5 files were not tried'
says 'could not be reached 5 times in a row'
start_run "$bin/halvora" --profile "$work/profile" publish --keep-trying 2[5-9].jpg
await_words 'Trying again in 5 seconds'
service_port=$HALVORA_LOOPBACK_PORT start_service "$bin/flickr-loopback" store4 --token tok:sec
code=0
wait "$run" || code=$?
[ $code -eq 0 ] || fail "exit code $code, not 0, although the service came back"
says 'Published 5 pictures.'

# A damaged journal is set aside, and told.
printf 'spoiled' | dd of="$work/profile/journal.db" conv=notrunc status=none
expect 0 publish -n 25.jpg
says 'kept as journal.db.damaged-1'
echo 'Every picture was published once.'
