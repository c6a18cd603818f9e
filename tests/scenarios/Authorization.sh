#!/usr/bin/env bash
# A user authorizes Halvora with a terminal and a real browser before them, and publishes with what was granted:
# Authorization.sh FOLDER-OF-THE-PROGRAMS FOLDER-OF-THE-TOOLS
# What the user sees is read from the terminal's screen and from the browser's pages. What is secret is found nowhere
# but where it is kept. The first step that isn't as promised ends the test.
set -euo pipefail
bin=$(cd "$1" && pwd)
tools=$(cd "$2" && pwd)
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Host.sh
. "$(dirname "$0")/Host.sh"
watch=
finish() {
    [ -z "$watch" ] || kill "$watch" 2>/dev/null || true
    close_terminal
    "$tools/browser" stop "$work/browser" 2>/dev/null || true
    stop_service
    rm -rf "$work" 2>/dev/null || { sleep 1; rm -rf "$work"; }
}
trap finish EXIT
browser() { local command=$1; shift; "$tools/browser" "$command" "$work/browser" "$@"; }
page_says() { grep -qF -- "$2" "$work/browser/$1.txt" || fail "$1 does not say \"$2\" but: $(<"$work/browser/$1.txt")"; }
browser_says() { local text; text=$(browser text); [[ $text == *"$1"* ]] || fail "the page does not say \"$1\" but: $text"; }
account=$work/profile/init-data.bin
earlier=0 # authorizations that the service had before those in question

# The user begins, and answers the first dialog with a key: begin KEY
begin() {
    rm -f "$work/browser/answered"
    HALVORA_ANSWER=$answer open_terminal 90 40 "'$bin/halvora' --profile '$work/profile' authorize; echo \$? >'$work/code'"
    sees 'Halvora needs your permission to publish images to Flickr.' -S -
    sees 'Enter: Authorize. Esc' -S -
    key "$1"
}
# ... and the page: authorize ANSWER
authorize() {
    answer=$1 begin Enter
    await_file "$work/browser/answered" 'nobody answered in the browser'
    page_says page 'May Halvora upload photos to your account?'
    sees "Return to this window once you've authorized Halvora on Flickr." -S -
    sees 'Enter: Authorization Granted. Esc' -S -
}
fails_with() {
    sees "$1" -S -
    sees 'Enter: OK. Esc' -S -
    key Enter
    ends_with 1
}
is_refused() {
    key Enter
    fails_with 'Could not connect to the Flickr authorization server. The error code was 0x80004005.'
    expect 0 account
    says 'No account is set'
}
states_are() {
    local states
    states=$(admin authorizations | jq -r ".[$earlier:]"' | map(.state + "/" + .at_maker) | join(" ")')
    [ "$states" = "$1" ] || fail "the service has \"$states\", not \"$1\""
}
is_unchanged() { cmp -s "$work/granted" "$account" || fail "the account is changed by $1"; }

start_service "$bin/flickr-loopback" store
export HALVORA_BROWSER=$work/browser PATH=$tools/user:$PATH LC_ALL=C.UTF-8 answer=Allow
browser start
blank_picture "$work/blank.jpg"

# Nobody to ask: what to do instead.
expect 1 authorize
says 'account --set-token -'
[ ! -e "$account" ] || fail 'an account was stored that nobody granted'

# A no to the first question leads nowhere.
begin Escape
ends_with 3
[ ! -e "$work/browser/user.log" ] || fail 'a browser was started without consent'

# The grant, with an eye on the arguments of all processes, and a picture that is published with it.
(while :; do cat /proc/[0-9]*/cmdline 2>/dev/null | tr '\0' '\n' || true; sleep 0.1; done >"$work/process-arguments") &
watch=$!
authorize Allow
page_says after-page 'You can return to Halvora now'
verifier=$(LC_ALL=C grep -ahoE '"verifier":"[0-9a-f]{16}"' "$work"/store/index.sqlite* | head -n 1 | cut -d'"' -f4)
[ -n "$verifier" ] || fail 'the service has no verifier'
key Enter
sees 'Halvora may now publish on the Flickr account of Ada Lovelace.' -S -
ends_with 0
kill $watch
wait $watch 2>/dev/null || true
watch=
states_are used/taken
[ "$(stat -c %a "$account")" = 600 ] || fail "others may read the account: $(stat -c %A "$account")"
[ "$(stat -c %a "$work/profile")" = 700 ] || fail 'others may look into the profile'
expect 0 account
says 'Authorized:    yes'
expect 0 status
says 'halvora settings'
expect 0 settings JPEGMode=0
expect 0 publish -v "$work/blank.jpg"
newest=$(admin tokens | jq -r '.[-1] | select(.permission == "write") | .token')
[ "$(uploads | jq -r '.[].token')" = "$newest" ] || fail 'the picture was not uploaded with the granted token'
cp "$account" "$work/granted"

# Token, secret and verifier are nowhere but in the account's file. The search finds them there, so it would
# find them elsewhere; a text may be UTF-8 or UTF-16.
mapfile -t pair < <(strings -n 8 -e l "$work/granted" | head -n 2)
[ ${#pair[@]} -eq 2 ] || fail 'no token pair in the account'
holds() { # TEXT FILE
    LC_ALL=C grep -qaF -- "$1" "$2" || tr -d '\0' <"$2" | LC_ALL=C grep -qaF -- "$1"
}
for secret in "${pair[@]}"; do holds "$secret" "$work/granted" || fail 'the search sees nothing'; done
grep -qF 'oauth_token=' "$work/process-arguments" || fail 'the watch over the arguments saw nothing'
while IFS= read -r -d '' file; do
    for secret in "${pair[@]}" "$verifier"; do
        ! holds "$secret" "$file" || fail "a secret stands in ${file#"$work/"}"
    done
done < <(find "$work/profile" -type f ! -name init-data.bin -print0
    printf '%s\0' "$work/everything-said" "$work/process-arguments")

# A no to the second question, and a service that can't be reached, leave the account as it was.
authorize Allow
key Escape
ends_with 3
is_unchanged 'a refusal'
stop_service
begin Enter
fails_with 'Could not connect to the Flickr authorization server. The error code was 0x'
sees 'halvora authorize' -S -
is_unchanged 'an unreachable service'

# An account that can't be read right afterwards is authorized all the same.
service_port=$HALVORA_LOOPBACK_PORT # which the browser goes to
start_service "$bin/flickr-loopback" store --fault 'kind=status&status=504&target=rest&count=9'
authorize Allow
key Enter
fails_with 'Unknown reply format. Cannot understand server anwser.'
sees 'The authorization is stored' -S -
! cmp -s "$work/granted" "$account" || fail 'the new authorization is not stored'
expect 0 account
says 'Authorized:    yes'
stop_service
start_service "$bin/flickr-loopback" store
earlier=$(admin authorizations | jq length)

# Going on before the page is answered: the old grant is lost, and a grant that comes too late helps nobody.
authorize read
is_refused
sees 'The earlier authorization is gone' -S -
browser press Allow
states_are granted/waiting
expect 1 publish "$work/blank.jpg"
says 'No Flickr account'

# A mistyped account is no answer; one answer is all that counts.
authorize read
page=$(browser address)
browser fill 'Your account' nobody
browser press Allow
browser_says 'There is no account of this name here.'
states_are 'granted/waiting pending/none'
browser fill 'Your account' halvora-demo
browser press Allow
[ "$(browser address)" = http://authorization.halvora.example/flickr/authorization/granted ] || fail 'the verifier is in sight'
key Enter
ends_with 0
browser open "$page"
browser_says 'You have already allowed this'
states_are 'granted/waiting used/taken'
admin requests | jq -e 'any(.host == "authorization.halvora.example" and .path == "/flickr/authorization/"
    and .secure == false and .user_agent != "" and .status == 303)' >/dev/null || fail 'the callback did not come in plain'

# An answer counts until the time is over.
authorize read
admin authorizations/advance -d seconds=601 >/dev/null
browser press Allow
browser_says 'The time for this question is over'
is_refused
earlier=$(admin authorizations | jq length)

# A denial, and a page that was closed.
authorize Deny
page_says after-page 'Nothing was granted'
is_refused
authorize close
is_refused
states_are 'denied/none pending/none'

# After all of that the way is open still.
authorize Allow
key Enter
ends_with 0
expect 0 publish --again "$work/blank.jpg"
echo 'The user has granted, and published.'
