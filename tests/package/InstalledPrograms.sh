#!/usr/bin/env bash
# Tries the installed programs with nothing but a shell: InstalledPrograms.sh FOLDER PICTURE
# publishes the picture (a large JPEG) to the service on this machine, unchanged and processed.
set -euo pipefail
bin=$1 picture=$2
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "$0")/../scenarios/Service.sh"
finish() { stop_service; rm -rf "$work"; }
trap finish EXIT
fail() { printf 'FAILED: %s\n' "$1" >&2; cat "$work"/out "$work"/service.log >&2 2>/dev/null || true; exit 1; }
run() { "$bin/halvora" --profile "$work/profile" "$@" >"$work/out" 2>&1 || fail "halvora $*: exit code $?"; }
says() { grep -q -- "$1" "$work/out" || fail "nothing said of: $1"; }

run --version
says '^halvora [0-9.]*$'
run status
! grep -qi 'missing\|could not' "$work/out" || fail 'a module is missing'

start_service "$bin/flickr-loopback" store --token tok:sec
printf 'tok\nsec\n' | "$bin/halvora" --profile "$work/profile" account --set-token - >"$work/out" 2>&1 || fail 'no account'

run settings JPEGMode=0
run publish "$picture"
run settings JPEGMode=2 'JPEGLongDimension=1024 px'
run publish --again "$picture"
sizes=$(find "$work/store/photos" -type f -exec stat -c %s {} + | sort -n)
large=$(stat -c %s "$picture")
[ "$(wc -l <<<"$sizes")" = 2 ] || fail 'not two uploads'
[ "$(tail -n 1 <<<"$sizes")" = "$large" ] || fail 'the picture did not arrive as it is'
[ "$(head -n 1 <<<"$sizes")" -lt $((large / 2)) ] || fail 'the picture did not arrive smaller'
cmp -s "$picture" "$(find "$work/store/photos" -type f -size "${large}c")" || fail 'the picture did not arrive to the byte'
echo "The programs in $bin publish."
