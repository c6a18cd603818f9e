# What the end-to-end tests share. To be sourced, with $bin the folder of the programs, $work a folder of the
# test's own, and a function fail that ends the test with its argument's words.
# shellcheck shell=bash disable=SC2034,SC2154
service=

# Waits at most a minute until a command succeeds, and fails with the words if it doesn't: await WORDS COMMAND...
await() {
    local words=$1
    shift
    for _ in $(seq 600); do ! "$@" || return 0; sleep 0.1; done
    fail "$words"
}

# Starts a program whose words go to $work/out. The file is empty before the program runs, so that whoever waits
# for a line can't find the line of a program that ran earlier: start_run PROGRAM ARGUMENTS...
start_run() {
    : >"$work/out"
    "$@" >>"$work/out" 2>&1 &
    run=$!
}

# The service on a free port, whose addresses become variables: start_service STORE OPTIONS...
start_service() {
    rm -f "$work/env"
    "$bin/flickr-loopback" --port 0 --store "$work/$1" --ready-file "$work/env" "${@:2}" >"$work/service.log" 2>&1 &
    service=$!
    await 'the service did not start' test -f "$work/env"
    # shellcheck disable=SC1091
    . "$work/env"
    export HALVORA_LOOPBACK_PORT
}
end_service() { [ -z "$service" ] || kill "$service" 2>/dev/null || true; }
stop_service() { end_service; wait "$service" 2>/dev/null || true; service=; }

# What the service tells of itself: admin uploads
admin() { curl -sS --noproxy '*' "http://127.0.0.1:$HALVORA_LOOPBACK_PORT/_loopback/$1"; }

# A whole JPEG of one pixel: blank_picture FILE
blank_picture() {
    base64 -d >"$1" <<'PICTURE'
/9j/2wCEABALCwsMCxAMDBAXDw0PFxsUEBAUGx8XFxcXFx8eFxoaGhoXHh4jJSclIx4vLzMzLy9AQEBAQEBAQEBAQEBAQEABEQ8P
ERMRFRISFRQRFBEUGhQWFhQaJhoaHBoaJjAjHh4eHiMwKy4nJycuKzU1MDA1NUBAP0BAQEBAQEBAQEBAQP/AABEIAAEAAQMBIgAC
EQEDEQH/xABLAAEBAAAAAAAAAAAAAAAAAAAABwEBAAAAAAAAAAAAAAAAAAAAABABAAAAAAAAAAAAAAAAAAAAABEBAAAAAAAAAAAA
AAAAAAAAAP/aAAwDAQACEQMRAD8AoAAP/9k=
PICTURE
}
