# shellcheck shell=bash
# Programs that run while the script goes on. A script sets work, its temporary folder, before it sources this
# file, and defines fail MESSAGE.
# shellcheck disable=SC2034,SC2154

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
