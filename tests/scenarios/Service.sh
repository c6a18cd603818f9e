# shellcheck shell=bash
# What the scripts share that need the photo service. A script sets work, its temporary folder, before it sources
# this file, and defines fail MESSAGE. Needs only bash and coreutils, and curl for
# the administration interface.
# shellcheck disable=SC2154

service=
service_port=0

# start_service PROGRAM STORE OPTIONS...: starts flickr-loopback on $service_port (0 is any) with the store $work/STORE, sets
# $service to its process, and sets the variables by which clients find it.
start_service() {
    rm -f "$work/env"
    "$1" --port "$service_port" --store "$work/$2" --ready-file "$work/env" "${@:3}" >"$work/service.log" 2>&1 &
    service=$!
    await_file "$work/env" 'the service did not start'
    # shellcheck disable=SC1091
    . "$work/env"
    export HALVORA_LOOPBACK_PORT
}

# Ends the service if it runs, and waits until it has ended.
stop_service() {
    [ -z "$service" ] || { kill "$service" && wait "$service"; } 2>/dev/null || true
    service=
}

# The service's administration interface: admin PATH CURL-OPTIONS...
admin() { curl -sS --noproxy '*' "http://127.0.0.1:$HALVORA_LOOPBACK_PORT/_loopback/$1" "${@:2}"; }
uploads() { admin uploads; }

# await_file FILE MESSAGE: waits until the file exists; fails with the message after a minute.
await_file() {
    for _ in $(seq 600); do [ ! -e "$1" ] || return 0; sleep 0.1; done
    fail "$2"
}

# blank_picture FILE: writes a JPEG file of one pixel.
blank_picture() {
    base64 -d >"$1" <<'PICTURE'
/9j/2wCEABALCwsMCxAMDBAXDw0PFxsUEBAUGx8XFxcXFx8eFxoaGhoXHh4jJSclIx4vLzMzLy9AQEBAQEBAQEBAQEBAQEABEQ8P
ERMRFRISFRQRFBEUGhQWFhQaJhoaHBoaJjAjHh4eHiMwKy4nJycuKzU1MDA1NUBAP0BAQEBAQEBAQEBAQP/AABEIAAEAAQMBIgAC
EQEDEQH/xABLAAEBAAAAAAAAAAAAAAAAAAAABwEBAAAAAAAAAAAAAAAAAAAAABABAAAAAAAAAAAAAAAAAAAAABEBAAAAAAAAAAAA
AAAAAAAAAP/aAAwDAQACEQMRAD8AoAAP/9k=
PICTURE
}
