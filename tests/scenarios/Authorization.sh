#!/usr/bin/env bash
# From "halvora authorize" to an account that may publish: Authorization.sh FOLDER-OF-THE-PROGRAMS
# A user at a terminal, played by what is typed into it; a browser, played by curl behind xdg-open; the
# service and the maker's endpoint. And what is secret in it is found nowhere but where it is kept.
# Every step says what it saw; the first that isn't as promised ends the test.
set -euo pipefail
bin=$1
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "$0")/Service.sh"
sampler=
finish() {
    [ -z "$sampler" ] || kill "$sampler" 2>/dev/null || true
    stop_service
    rm -rf "$work"
}
trap finish EXIT
fail() {
    printf 'FAILED: %s\n' "$1" >&2
    for file in "$work"/out "$work"/screen "$work"/browser.log; do [ ! -f "$file" ] || tail -n 60 "$file" >&2; done
    exit 1
}
says() { grep -qF -- "$1" "$work/out" || fail "nothing said of: $1"; }
# Runs halvora without a terminal, its words in $work/out: expect CODE ARGUMENTS...
expect() {
    local wanted=$1 code=0
    shift
    setsid -w "$bin/halvora" --profile "$work/profile" "$@" </dev/null >"$work/out" 2>&1 || code=$?
    cat "$work/out" >>"$work/everything-said"
    [ $code -eq "$wanted" ] || fail "halvora $*: exit code $code, not $wanted"
}
# Waits until a file has a line with the text: await FILE TEXT
await() {
    for _ in $(seq 300); do ! grep -qsF -- "$2" "$1" || return 0; sleep 0.1; done
    fail "not seen in ${1##*/}: $2"
}

# The browser: gets the page, answers its form as $browser_decision says, and goes where it is sent.
mkdir "$work/path"
cat >"$work/path/xdg-open" <<'BROWSER'
#!/usr/bin/env bash
exec >>"$scenario/browser.log" 2>&1
printf '%s\n' "$@" >"$scenario/browser-arguments"
sleep 0.5   # long enough for the watch over the arguments to see this program
get() {
    curl -sS --noproxy '*' --cacert "$HALVORA_CA_FILE" --connect-to "::127.0.0.1:$HALVORA_LOOPBACK_PORT" \
        -L -b "$scenario/jar" -c "$scenario/jar" "$@"
}
page=$(get "$1")
fields=(--data-urlencode "decision=$browser_decision")
while read -r name value; do fields+=(--data-urlencode "$name=$value"); done \
    < <(grep -oE 'name="[a-z_]+" value="[^"]*"' <<<"$page" | grep -v '"decision"' |
        sed -E 's/name="([^"]*)" value="([^"]*)"/\1 \2/')
get -o "$scenario/last-page" -D "$scenario/way" "${fields[@]}" "${1%%\?*}"
mv "$scenario/way" "$scenario/landed"
BROWSER
chmod +x "$work/path/xdg-open"
export PATH="$work/path:$PATH" scenario="$work" browser_decision=allow LC_ALL=C.UTF-8 TERM=dumb

# Runs "halvora authorize" in a terminal whose keys come from descriptor 7: authorize; then finish_authorize CODE
mkfifo "$work/keys"
exec 7<>"$work/keys"
authorize() {
    rm -f "$work/screen" "$work/landed"
    export tested_program="$bin/halvora"
    script -qfec 'exec "$tested_program" --profile "$scenario/profile" authorize' "$work/screen" <"$work/keys" >/dev/null 2>&1 &
    user=$!
}
type_in() { printf '%s\r' "$1" >&7; }
finish_authorize() {
    local code=0
    wait $user || code=$?
    cp "$work/screen" "$work/out"
    cat "$work/out" >>"$work/everything-said"
    [ $code -eq "$1" ] || fail "halvora authorize: exit code $code, not $1"
}
consent() { await "$work/screen" 'Halvora needs your permission'; sleep 0.3; type_in "$1"; }
complete() {
    await "$work/screen" 'Return to this window'
    sleep 0.3
    type_in "$1"
}
# Waits for the error's dialog, whose text is broken into lines, and confirms it: dismiss_error CAPTION TEXT
dismiss_error() {
    for _ in $(seq 300); do ! shows "$2" || break; sleep 0.1; done
    shows "$1" || fail "no dialog with the caption: $1"
    shows "$2" || fail "the dialog doesn't say: $2"
    sleep 0.3
    type_in ''
}
shows() { sed 's/│//g' "$work/screen" | tr -s ' \r\n' ' ' | grep -F -- "$1" >/dev/null; }

start_service "$bin/flickr-loopback" store

# Nobody to ask: what to do instead.
expect 1 authorize
says 'account --set-token -'
[ ! -e "$work/profile/init-data.bin" ] || fail 'an account was stored that nobody granted'

# A no to the first question leads nowhere.
authorize
consent Cancel
finish_authorize 3
[ ! -e "$work/browser-arguments" ] || fail 'a browser was started without consent'

# From end to end, with an eye on the arguments of all processes.
(while :; do cat /proc/[0-9]*/cmdline 2>/dev/null | tr '\0' '\n' || true; sleep 0.1; done >"$work/process-arguments") &
sampler=$!
authorize
consent Authorize
await_file "$work/landed" 'the browser did not land anywhere'
complete 'Authorization Granted'
finish_authorize 0
kill $sampler
wait $sampler 2>/dev/null || true
sampler=
says 'Halvora may now publish on the Flickr account of '
[ "$(stat -c %a "$work/profile/init-data.bin")" = 600 ] || fail "others may read the account: $(stat -c %A "$work/profile/init-data.bin")"
[ "$(stat -c %a "$work/profile")" = 700 ] || fail 'others may look into the profile'
cp "$work/profile/init-data.bin" "$work/granted"
expect 0 account
says 'Authorized:    yes'
expect 0 status
says 'halvora settings'
verifier=$(sed -nE 's/^location:.*oauth_verifier=([^&[:space:]]*).*/\1/ip' "$work/landed")
[ -n "$verifier" ] || fail "the browser went by $(cat "$work/landed")"

# What was granted is good for publishing.
blank_picture "$work/blank.jpg"
expect 0 settings JPEGMode=0
expect 0 publish -v "$work/blank.jpg"
cmp -s "$work/granted" "$work/profile/init-data.bin" || cp "$work/profile/init-data.bin" "$work/granted"

# Token, secret and verifier are nowhere but in the account's file. The search finds them there, so it would
# find them elsewhere; a text may be UTF-8 or UTF-16.
mapfile -t pair < <(strings -n 8 -e l "$work/granted" | head -n 2)
[ ${#pair[@]} -eq 2 ] || fail 'no token pair in the account'
holds() { # TEXT FILE
    LC_ALL=C grep -qaF -- "$1" "$2" || tr -d '\0' <"$2" | LC_ALL=C grep -qaF -- "$1"
}
for secret in "${pair[@]}"; do holds "$secret" "$work/granted" || fail 'the search sees nothing'; done
grep -qF 'oauth_token=' "$work/browser-arguments" || fail 'the browser got no page'
grep -qF 'oauth_token=' "$work/process-arguments" || fail 'the watch over the arguments saw nothing'
while IFS= read -r -d '' file; do
    for secret in "${pair[@]}" "$verifier"; do
        ! holds "$secret" "$file" || fail "a secret stands in ${file#"$work/"}"
    done
done < <(find "$work/profile" -type f ! -name init-data.bin -print0
    printf '%s\0' "$work/everything-said" "$work/browser-arguments" "$work/process-arguments")

# A no to the second question, and a service that can't be reached, leave the account as it was.
authorize
consent Authorize
complete Cancel
finish_authorize 3
cmp -s "$work/granted" "$work/profile/init-data.bin" || fail 'a refusal changed the account'
stop_service
authorize
consent Authorize
dismiss_error 'Authorization Error' 'Could not connect to the Flickr authorization server. The error code was 0x'
finish_authorize 1
says 'halvora authorize'
cmp -s "$work/granted" "$work/profile/init-data.bin" || fail 'an unreachable service changed the account'

# An account that can't be read right afterwards is authorized all the same.
start_service "$bin/flickr-loopback" store --fault 'kind=status&status=504&target=rest&count=9'
authorize
consent Authorize
await_file "$work/landed" 'the browser did not land anywhere'
complete 'Authorization Granted'
dismiss_error 'An error occurred while talking to Flickr' 'Unknown reply format. Cannot understand server anwser.'
finish_authorize 1
says 'The authorization is stored'
! cmp -s "$work/granted" "$work/profile/init-data.bin" || fail 'the new authorization is not stored'
expect 0 account
says 'Authorized:    yes'
stop_service

# "Granted" without a grant ends the earlier authorization, and says so.
start_service "$bin/flickr-loopback" store
export browser_decision=deny
authorize
consent Authorize
await_file "$work/landed" 'the browser did not land anywhere'
complete 'Authorization Granted'
dismiss_error 'Authorization Error' 'Could not connect to the Flickr authorization server. The error code was 0x80004005.'
finish_authorize 1
says 'The earlier authorization is gone'
expect 0 account
says 'No account is set'
expect 1 publish "$work/blank.jpg"
says 'No Flickr account'
stop_service
echo 'Everything arrived as it was meant.'
