#!/usr/bin/env bash
# The service as its users meet it: LoopbackService.sh FOLDER-OF-THE-PROGRAMS
# Its faults as halvora tells them, its refusals, its pages and its store.
set -euo pipefail
bin=$1
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Host.sh
. "$(dirname "$0")/../scenarios/Host.sh"
finish() { stop_service; rm -rf "$work"; }
trap finish EXIT
export LC_ALL=C.UTF-8

kept=0
# publish CODE ADDED WORDS PICTURE: halvora ends with the code and says the words; the service has so many pictures more,
# and no piece of another.
publish() {
    expect "$1" publish --again --unknown send "$4"
    says "$3"
    kept=$((kept + $2))
    [ "$(uploads | jq length)" = "$kept" ] || fail "$(uploads | jq length) pictures are kept, not $kept"
    [ -z "$(ls "$work/store/incoming")" ] || fail 'something incoming is left'
}
answer() { curl -sS --noproxy '*' --connect-to "::127.0.0.1:$HALVORA_LOOPBACK_PORT" --cacert "$work/store/ca/ca.pem" "$@"; }

blank_picture "$work/blank.jpg"
{ cat "$work/blank.jpg"; head -c 8000000 /dev/zero; } >"$work/large.jpg"
start_service "$bin/flickr-loopback" store --token tok:sec --fault 'kind=status&status=500&target=upload&skip=1&count=2'
set_token
expect 0 settings JPEGMode=0
answer http://127.0.0.1/ | grep -qF 'Nothing published yet' || fail 'something is shown before anything is published'

# A fault strikes the requests that it is meant for.
publish 0 1 'Published 1 picture.' "$work/blank.jpg"
publish 1 0 'HTTP Status = 500' "$work/blank.jpg"
publish 1 0 'HTTP Status = 500' "$work/blank.jpg"
while IFS='|' read -r fault added words; do
    admin faults -d "$fault" >/dev/null
    publish 1 "$added" "$words" "$work/large.jpg"
done <<'FAULTS'
kind=status&status=504|0|HTTP Status = 504: Gateway Timeout, The picture may or may not have arrived: 504 Gateway Timeout
kind=status&status=401&body=oauth_problem=token_rejected|0|HTTP Status = 401
kind=status&store=1|1|HTTP Status = 503: Service Unavailable
kind=error|0|Flickr Status = 105: Service currently unavailable
kind=error&code=106&message=write "failed"|0|Flickr Status = 106: Write "failed"
kind=garbage|1|The answer is not in the service's form
kind=cut&after=1000000|0|closed before everything was sent
kind=no-answer|1|closed after everything was sent
kind=truncated|1|before the answer was complete
FAULTS
for fault in 'kind=delay&ms=1000' 'kind=stall&ms=1000&after=500000' 'kind=slow&rate=8000000'; do
    admin faults -d "$fault" >/dev/null
    begin=$(date +%s%N)
    publish 0 1 'Published 1 picture.' "$work/large.jpg"
    [ $(($(date +%s%N) - begin)) -ge 990000000 ] || fail "it takes no time: $fault"
done
for mistake in kind=smoke 'kind=cut&aftre=1' 'kind=status&status=abc'; do
    [ "$(admin faults -d "$mistake" -o /dev/null -w '%{http_code}')" = 400 ] || fail "a mistake is taken: $mistake"
done

# Refusals by the account.
for case in 'bandwidth_max=1000&bandwidth_used=990 6' 'max_file_size=10 8' 'max_file_size=1000000&bandwidth_max=1000000000 '; do
    admin account -d "${case% *}" >/dev/null
    [ -z "${case#* }" ] || publish 1 0 "Flickr Status = ${case#* }" "$work/blank.jpg"
done

# Its pages run nothing of what was published.
cp "$work/blank.jpg" "$work/page.jpg"
exiftool -q -overwrite_original -XMP-dc:Title='<script>alert(1)</script>' -Keywords='b c' -Keywords="'\"><i>" "$work/page.jpg"
expect 0 publish --set IsPublic=0 "$work/page.jpg"
photo=http://127.0.0.1/photo/$(uploads | jq -r '.[-1].id')
for page in https://www.flickr.com/ "$photo"; do
    answer "$page" >"$work/out"
    for words in '&lt;script&gt;alert(1)' '<li>b c</li>' 'Only the owner' Safe; do says "$words"; done
    is_silent_about '<script'
    is_silent_about '><i>'
done
answer "$photo/file" | cmp - "$work/page.jpg" || fail 'another picture is shown'
for nothing in photo/1 photo/..%2F..%2Findex.sqlite/file; do
    [ "$(answer "http://127.0.0.1/$nothing" -o /dev/null -w '%{http_code}')" = 404 ] || fail "found: $nothing"
done

# One store for one service, with keys that nobody else reads; the next run has all of it.
[ "$(stat -c %a "$work"/store/ca/{ca,server}.key | sort -u)" = 600 ] || fail 'others may read the keys'
code=0
"$bin/flickr-loopback" --store "$work/store" >"$work/out" 2>&1 || code=$?
[ $code -ne 0 ] || fail 'two services have one store'
uploads >"$work/before"
cp "$work/store/ca/ca.pem" "$work/authority"
stop_service
start_service "$bin/flickr-loopback" store
uploads | cmp - "$work/before" || fail 'the next run has other uploads'
cmp "$work/store/ca/ca.pem" "$work/authority" || fail 'the next run has another authority'
echo 'The service does what it is told.'
