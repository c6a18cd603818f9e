#!/usr/bin/env bash
# The authorization as a user sees it, in a real browser: Browser.sh SERVICE BROWSER
# SERVICE is flickr-loopback, BROWSER the script that controls Chromium. This script also plays the application,
# which sends the signed requests. The first step that isn't as promised ends the test.
set -euo pipefail
service_program=$1
browser_script=$2
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "$0")/../scenarios/Service.sh"
finish() {
    "$browser_script" stop "$work/browser" 2>/dev/null || true
    "$browser_script" stop "$work/stranger" 2>/dev/null || true
    stop_service
    rm -rf "$work" 2>/dev/null || { sleep 1; rm -rf "$work"; }
}
trap finish EXIT
fail() { printf 'FAILED: %s\n' "$1" >&2; exit 1; }
browser() { local command=$1; shift; "$browser_script" "$command" "$work/browser" "$@"; }
shows() { local text; text=$(browser text); [[ $text == *"$1"* ]] || fail "the page does not say \"$1\" but: $text"; }
is() { [ "$2" = "$3" ] || fail "$1 is \"$2\", not \"$3\""; }

start_service "$service_program" store
admin=http://127.0.0.1:$HALVORA_LOOPBACK_PORT/_loopback
maker=authorization.halvora.example
steps=https://www.flickr.com/services/oauth

request() { curl -sS --noproxy '*' --cacert "$HALVORA_CA_FILE" --connect-to "::127.0.0.1:$HALVORA_LOOPBACK_PORT" "$@"; }
escaped() { jq -rn --arg text "$1" '$text | @uri'; }
# signed STEP TOKEN-SECRET NAME=VALUE...: sends a signed request with an empty body; the parameters must be sorted.
signed() {
    local step=$1 secret=$2 joined=() header='OAuth ' pair signature
    shift 2
    for pair in "$@"; do
        joined+=("${pair%%=*}=$(escaped "${pair#*=}")")
        header+="${pair%%=*}=\"$(escaped "${pair#*=}")\", "
    done
    signature=$(printf %s "POST&$(escaped "$steps/$step")&$(escaped "$(IFS='&'; echo "${joined[*]}")")" |
        openssl dgst -sha1 -hmac "64656d6f2d736563&$secret" -binary | base64)
    request -X POST -d '' -H "Authorization: ${header}oauth_signature=\"$(escaped "$signature")\"" "$steps/$step"
}
common() { printf '%s\n' oauth_consumer_key=68616c766f72612d64656d6f2d6b6579 "oauth_nonce=$(openssl rand -hex 6)" \
    oauth_signature_method=HMAC-SHA1 "oauth_timestamp=$(date +%s)"; }
value() { sed -n "s/.*\b$1=\([^&]*\).*/\1/p" <<<"$2"; }
# Sets token, secret and page.
begin() {
    local form
    mapfile -t fixed < <(common)
    form=$(signed request_token '' "oauth_callback=http://$maker/flickr/authorization/" "${fixed[@]}" oauth_version=1.0)
    token=$(value oauth_token "$form")
    secret=$(value oauth_token_secret "$form")
    [ -n "$token" ] && [ -n "$secret" ] || fail "no request token: $form"
    page="$steps/authorize?perms=write&oauth_token=$token"
}
trade() {
    mapfile -t fixed < <(common)
    signed access_token "$secret" "${fixed[@]}" "oauth_token=$token" "oauth_verifier=$1" oauth_version=1.0
}
exchange() { request "https://$maker/flickr/authorization/?oauth_token=$token" | sed -n 's:.*<Verifier>\(.*\)</Verifier>.*:\1:p'; }
state() { curl -sS --noproxy '*' "$admin/authorizations" | jq -r ".[] | select(.token == \"$token\") | .state + \" \" + .at_maker"; }

# A browser that doesn't trust the service's authority shows no page of it, so the other one checks certificates.
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj '/CN=Somebody else' -keyout "$work/other.key" -out "$work/other.crt" 2>/dev/null
HALVORA_CA_FILE=$work/other.crt "$browser_script" start "$work/stranger"
begin
"$browser_script" open "$work/stranger" "$page" 2>/dev/null || true
warning=$("$browser_script" text "$work/stranger")
[[ $warning == *CERT_AUTHORITY_INVALID* ]] || fail "the stranger sees: $warning"
"$browser_script" stop "$work/stranger"

browser start
browser open "$page"
shows 'May Halvora upload photos to your account?'
# By keyboard: the account, Allow, Deny; named as a screen reader names them.
is 'the order of focus' "$(browser run 'return [...document.querySelectorAll("a, button, input:not([type=hidden])")]
    .filter(e => e.tabIndex >= 0).map(e => e.labels && e.labels.length ? e.labels[0].innerText : e.innerText).join(" ")')" \
    '"Your account Allow Deny"'
is 'a heading for the sheet' "$(browser run 'return document.getElementById(document.querySelector("section")
    .getAttribute("aria-labelledby")).tagName')" '"H1"'

# Continuing too early: there is no verifier to fetch, and none is accepted.
is 'the verifier before an answer' "$(exchange)" ''
is 'an early trade' "$(trade 0123456789abcdef)" 'oauth_problem=verifier_invalid'

# The user mistypes the account, then allows it.
browser fill 'Your account' nobody
browser press Allow
shows 'There is no account of this name here.'
is 'the state after a wrong name' "$(state)" 'pending none'
browser fill 'Your account' halvora-demo
browser press Allow
shows 'You can return to Halvora now'
is 'the address at the end' "$(browser address)" "http://$maker/flickr/authorization/granted"
is 'the state after Allow' "$(state)" 'granted waiting'
verifier=$(exchange)
[ -n "$verifier" ] || fail 'the maker has no verifier'
is 'the second fetch' "$(exchange)" ''
pair=$(trade "$verifier")
is 'the account of the pair' "$(value username "$pair")" halvora-demo
is 'the second trade' "$(trade "$verifier")" 'oauth_problem=token_rejected'
browser open "$page"
shows 'You have already allowed this'
curl -sS --noproxy '*' "$admin/requests" | jq -e --arg host "$maker" 'any(.host == $host and .path == "/flickr/authorization/"
    and .secure == false and .user_agent != "" and .status == 303)' >/dev/null || fail 'the callback did not come in plain'

# Deny: nothing is granted, and the maker gets no verifier.
begin
browser open "$page"
browser press Deny
shows 'Nothing was granted'
is 'the state after Deny' "$(state)" 'denied none'
is 'a trade after Deny' "$(trade 0123456789abcdef)" 'oauth_problem=token_rejected'
browser open "$page"
shows 'You have already said no'

# Closing the page changes nothing: an answer still counts later, until the time is over.
begin
browser open "$page"
browser open about:blank
is 'the state after closing the page' "$(state)" 'pending none'
browser open "$page"
request -X POST -d seconds=601 "$admin/authorizations/advance" >/dev/null
browser press Allow
shows 'The time for this question is over'
is 'the state of a late answer' "$(state)" 'expired none'

# On a small phone no page is wider than the screen.
begin
browser size 320 640
for address in "$page" "$steps/authorize?oauth_token=none" "http://$maker/flickr/authorization/granted"; do
    browser open "$address"
    is "the width of $address" "$(browser run 'return document.documentElement.scrollWidth')" 320
done
echo 'The user is asked, and every answer counts as it was meant.'
