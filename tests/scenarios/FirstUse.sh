#!/usr/bin/env bash
# A user authorizes Halvora with a terminal and a real browser before them, and publishes with what
# was granted: FirstUse.sh FOLDER-OF-THE-PROGRAMS FOLDER-OF-THE-TOOLS
# What the user sees is read from the terminal's screen and from the browser's pages. The first step
# that isn't as promised ends the test.
set -euo pipefail
bin=$(cd "$1" && pwd)
tools=$(cd "$2" && pwd)
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "$0")/Service.sh"
# A terminal for each run: a new one can't be had of a server that is just ending.
terminals=0
screen() { tmux -S "$work/terminal-$terminals" "$@"; }
finish() {
    screen kill-server 2>/dev/null || true
    "$tools/browser" stop "$work/browser" 2>/dev/null || true
    stop_service
    rm -rf "$work" 2>/dev/null || { sleep 1; rm -rf "$work"; }
}
trap finish EXIT
fail() {
    printf 'FAILED: %s\n' "$1" >&2
    screen capture-pane -p >&2 2>/dev/null || true
    cat "$work/out" "$work/browser/user.log" >&2 2>/dev/null || true
    exit 1
}
browser() { local command=$1; shift; "$tools/browser" "$command" "$work/browser" "$@"; }
page_says() { grep -qF -- "$2" "$work/browser/$1.txt" || fail "$1 does not say \"$2\" but: $(<"$work/browser/$1.txt")"; }
# Waits until the terminal shows a text, wherever its lines are broken.
sees() {
    for _ in $(seq 300); do
        ! screen capture-pane -p -S - 2>/dev/null | tr -s ' \n│' ' ' | grep -qF -- "$1" || return 0
        sleep 0.1
    done
    fail "the terminal does not show: $1"
}
key() { screen send-keys "$@"; }
# The user begins, agrees, and answers the page: authorize ANSWER
authorize() {
    rm -f "$work/browser/answered" "$work/code"
    screen kill-server 2>/dev/null || true
    terminals=$((terminals + 1))
    HALVORA_ANSWER=$1 screen -f /dev/null new-session -d -x 90 -y 40 \
        "'$bin/halvora' --profile '$work/profile' authorize; echo \$? >'$work/code'; sleep 60"
    sees 'Halvora needs your permission to publish images to Flickr.'
    sees 'Enter: Authorize. Esc'
    key Enter
    await_file "$work/browser/answered" 'nobody answered in the browser'
    page_says page 'May Halvora upload photos to your account?'
    sees "Return to this window once you've authorized Halvora on Flickr."
    sees 'Enter: Authorization Granted. Esc'
}
ends_with() {
    for _ in $(seq 600); do [ ! -s "$work/code" ] || break; sleep 0.1; done
    [ "$(cat "$work/code" 2>/dev/null)" = "$1" ] || fail "halvora authorize ended with $(cat "$work/code" 2>/dev/null), not $1"
}
is_refused() {
    key Enter
    sees 'Could not connect to the Flickr authorization server. The error code was 0x80004005.'
    sees 'Enter: OK. Esc'
    key Enter
    ends_with 1
    "$bin/halvora" --profile "$work/profile" account >"$work/out" 2>&1 || true
    ! grep -q 'Authorized: *yes' "$work/out" || fail 'authorized without a grant'
}
admin() { curl -sS --noproxy '*' "http://127.0.0.1:$HALVORA_LOOPBACK_PORT/_loopback/$1"; }
states() { admin authorizations | jq -r 'map(.state + "/" + .at_maker) | join(" ")'; }
states_are() { [ "$(states)" = "$1" ] || fail "the service has \"$(states)\", not \"$1\""; }

start_service "$bin/flickr-loopback" store
export HALVORA_BROWSER=$work/browser PATH=$tools/user:$PATH LC_ALL=C.UTF-8
browser start

# The grant, and a picture that is published with it.
authorize Allow
page_says after-page 'You can return to Halvora now'
key Enter
sees 'Halvora may now publish on the Flickr account of Ada Lovelace.'
ends_with 0
states_are used/taken
blank_picture "$work/first.jpg"
"$bin/halvora" --profile "$work/profile" settings JPEGMode=0 >"$work/out"
"$bin/halvora" --profile "$work/profile" publish "$work/first.jpg" >"$work/out" 2>&1 || fail 'the picture did not go up'
newest=$(admin tokens | jq -r '.[-1] | select(.permission == "write") | .token')
[ "$(admin uploads | jq -r '.[].token')" = "$newest" ] || fail 'the picture did not go up with the granted token'

# Going on before the page is answered: the old grant is lost, and a grant that comes too late helps nobody.
authorize read
is_refused
browser press Allow
states_are 'used/taken granted/waiting'
"$bin/halvora" --profile "$work/profile" publish "$work/first.jpg" >"$work/out" 2>&1 && fail 'published without a grant'

# A denial, and a page that was closed.
authorize Deny
page_says after-page 'Nothing was granted'
is_refused
authorize close
is_refused
states_are 'used/taken granted/waiting denied/none pending/none'

# After all of that the way is open still.
authorize Allow
key Enter
ends_with 0
"$bin/halvora" --profile "$work/profile" publish --again "$work/first.jpg" >"$work/out" 2>&1 || fail 'the picture did not go up again'
echo 'The user has granted, and published.'
