# shellcheck shell=bash
# What the scripts share that run halvora, in the background or in a terminal of their own. A script sets bin, the
# folder of the programs, and work, its temporary folder, before it sources this file; at its end it calls
# close_terminal.
# shellcheck disable=SC2034,SC2154

# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "${BASH_SOURCE[0]}")/Service.sh"

fail() {
    printf 'FAILED: %s\n' "$1" >&2
    screen capture-pane -p >&2 2>/dev/null || true
    [ ! -f "$work/out" ] || tail -n 60 "$work/out" >&2
    exit 1
}

# Runs halvora without a terminal, in $language if that is set, its words in $work/out: expect CODE ARGUMENTS...
expect() {
    local wanted=$1 code=0
    shift
    setsid -w ${language:+env LC_ALL=$language} "$bin/halvora" --profile "$work/profile" "$@" </dev/null >"$work/out" 2>&1 ||
        code=$?
    cat "$work/out" >>"$work/everything-said"
    [ $code -eq "$wanted" ] || fail "halvora $*: exit code $code, not $wanted"
}
says() { grep -qF -- "$1" "$work/out" || fail "nothing said of: $1"; }
is_silent_about() { ! grep -qF -- "$1" "$work/out" || fail "said: $1"; }
set_token() { printf 'tok\nsec\n' | "$bin/halvora" --profile "$work/profile" account --set-token - >/dev/null; }

# start_run PROGRAM ARGUMENTS...: starts the program with its words in $work/out, and sets $run to its process. The
# file is emptied before this returns, so that await_words can't find the words of a program that ran earlier.
start_run() {
    : >"$work/out"
    "$@" >>"$work/out" 2>&1 &
    run=$!
}

# await_words PATTERN: waits until the program has said something that matches; fails after half a minute.
await_words() {
    for _ in $(seq 600); do ! grep -q -- "$1" "$work/out" || return 0; sleep 0.05; done
    fail "not said: $1"
}

# A terminal for each run: a new one can't be had of a server that is just ending.
terminals=0
screen() { tmux -S "$work/terminal-$terminals" "$@"; }
close_terminal() { screen kill-server 2>/dev/null || true; }
# open_terminal COLUMNS ROWS COMMAND: the command writes its exit code to $work/code.
open_terminal() {
    close_terminal
    terminals=$((terminals + 1))
    rm -f "$work/code"
    screen -f /dev/null new-session -d -x "$1" -y "$2" "$3; sleep 60"
}
# The text of the terminal in one line.
on_screen() { screen capture-pane -p "$@" 2>/dev/null | tr -s ' \n│' ' '; }
# sees TEXT CAPTURE-OPTIONS...: waits until the terminal shows a text, wherever its lines are broken.
sees() {
    for _ in $(seq 600); do ! on_screen "${@:2}" | grep -qF -- "$1" || return 0; sleep 0.05; done
    fail "the terminal does not show: $1"
}
key() { screen send-keys "$@"; }
keys() { local count=$1; shift; for _ in $(seq "$count"); do key "$@"; done; }
# The program in the terminal ends: ends_with CODE
ends_with() {
    for _ in $(seq 1200); do [ ! -s "$work/code" ] || break; sleep 0.05; done
    on_screen -S - >>"$work/everything-said"
    [ "$(cat "$work/code" 2>/dev/null)" = "$1" ] || fail "the program ended with $(cat "$work/code" 2>/dev/null), not $1"
}
