#!/usr/bin/env bash
# What a user chooses in the settings sheet arrives: Settings.sh FOLDER-OF-THE-PROGRAMS
# From the sheet in a terminal, played by what is typed into it, to the registry, the state line, the log,
# the fields of an upload and the picture itself. The first step that isn't as promised ends the test.
set -euo pipefail
bin=$(cd "$1" && pwd)
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "$0")/Service.sh"
terminals=0
screen() { tmux -S "$work/terminal-$terminals" "$@"; }
finish() {
    screen kill-server 2>/dev/null || true
    stop_service
    rm -rf "$work"
}
trap finish EXIT
fail() {
    printf 'FAILED: %s\n' "$1" >&2
    screen capture-pane -p >&2 2>/dev/null || true
    [ ! -f "$work/out" ] || tail -n 40 "$work/out" >&2
    exit 1
}
sees() {
    for _ in $(seq 600); do
        ! screen capture-pane -p 2>/dev/null | tr -s ' \n│' ' ' | grep -qF -- "$1" || return 0
        sleep 0.05
    done
    fail "the terminal does not show: $1"
}
key() { screen send-keys "$@"; }
keys() { local count=$1; shift; for _ in $(seq "$count"); do key "$@"; done; }
halvora() { "$bin/halvora" --profile "$work/profile" "$@" </dev/null >"$work/out" 2>&1; }
# Opens the sheet in a terminal of a size: sheet COLUMNS ROWS
sheet() {
    screen kill-server 2>/dev/null || true
    terminals=$((terminals + 1))
    rm -f "$work/code"
    screen -f /dev/null new-session -d -x "$1" -y "$2" \
        "echo before; stty -a >'$work/stty'; '$bin/halvora' --profile '$work/profile' settings; echo \$? >'$work/code'; stty -a | cmp - '$work/stty' && echo unchanged; sleep 60"
    sees 'Cancel ]'
}
# The sheet has gone, and left the terminal as it was: closed CODE
closed() {
    for _ in $(seq 1200); do [ ! -s "$work/code" ] || break; sleep 0.05; done
    [ "$(cat "$work/code" 2>/dev/null)" = "$1" ] || fail "halvora settings ended with $(cat "$work/code" 2>/dev/null), not $1"
    sees 'unchanged'
    sees 'before'
    ! screen capture-pane -p | grep -qF 'Cancel ]' || fail 'something of the sheet is left on the screen'
}
stored() {
    halvora settings
    local setting
    for setting in "$@"; do
        grep -qE "^${setting%%=*} *= *\"?${setting#*=}\"?( |\$)" <(sed 's/  */ /g' "$work/out") || fail "not stored: $setting"
    done
}
admin() { curl -sS --noproxy '*' "http://127.0.0.1:$HALVORA_LOOPBACK_PORT/_loopback/$1"; }

export LC_ALL=C.UTF-8
start_service "$bin/flickr-loopback" store --token sheet-token:sheet-secret
printf 'sheet-token\nsheet-secret\n' | "$bin/halvora" --profile "$work/profile" account --set-token - >"$work/out"

# Cancelled in all ways, nothing is kept.
halvora settings
cp "$work/out" "$work/defaults"
for way in Escape C-c; do
    sheet 80 24
    sees 'Who can see the published photos?'
    key Space
    sees '[x] Set uploaded photo'
    key "$way"
    closed 0
done
halvora settings
cmp -s "$work/out" "$work/defaults" || fail 'a cancelled sheet stored something'

# A terminal that nobody knows gets the list.
terminals=$((terminals + 1))
screen -f /dev/null new-session -d -x 80 -y 40 "TERM=nosuchterm '$bin/halvora' --profile '$work/profile' settings; sleep 60"
sees 'JPEGMode=2 (default)'

# Through all pages, on two sizes of terminal: title and description, family, asynchronous; moderate,
# screenshots, hidden; JPEG at 320 px without GPS; RAW minimized no more, at 500 px from the list.
walk() { # COLUMNS ROWS
    sheet "$1" "$2"
    key Space Tab Space Tab Tab
    sees 'Who can see the published photos?'
    keys 3 Down
    sees '(o) You and your family'
    key Tab Space C-NPage
    sees '(o) Safe'
    key Down Tab Down Tab Down
    sees '(o) Hide from public searches'
    key C-NPage
    sees 'JPEG Settings'
    key Tab
    sees '[x] Further reduce the upload size'
    key Space
    keys 4 Tab
    sees '[x] Upload GPS data'
    key Space
    sees '[ ] Upload GPS data'
    key Tab Tab 3 2 0
    sees '[320_'
    key C-NPage
    sees '[x] Further reduce the upload size'
    key Space
    keys 6 Tab
    key Down
    sees '240 px'
    keys 3 Down
    key Enter
    sees '[500 px_'
    key Enter
    closed 0
}
wanted=(WriteTitle=1 WriteDescription=1 WriteTags=0 IsPublic=0 IsFriend=0 IsFamily=1 AsyncUpload=1 SafetyLevel=1
    ContentType=1 SearchVisibility=1 JPEGMode=2 JPEGMinimize=0 JPEGWriteGPS=0 'JPEGLongDimension=320 px'
    RAWMinimize=0 'RAWLongDimension=500 px')
names=$(printf '%s\n' "${wanted[@]}" | sed 's/=.*/=/')
for size in '80 24' '40 12'; do
    # shellcheck disable=SC2086
    halvora settings $names
    # shellcheck disable=SC2086
    walk $size
    stored "${wanted[@]}"
done

# What the scriptable form stores, the sheet shows.
halvora settings 'JPEGLongDimension=1024 px' JPEGMode=0
sheet 60 15
keys 3 C-PPage
sees '(o) Upload files exactly as they are on disk'
sees 'JPEG Settings'
key Escape
closed 0
halvora settings JPEGMode=2 'JPEGLongDimension=320 px' AsyncUpload=0

# State line, log and form.
halvora status
grep -qF '320' "$work/out" || fail 'the state line does not tell the size'
cp "$work/out" "$work/state"
vips black "$work/flat.png" 900 600 --bands 3
vips gaussnoise "$work/noise.png" 900 600 --sigma 40 --mean 128
vips jpegsave "$work/noise.png" "$work/picture.jpg" --Q 95
exiftool -q -overwrite_original -XMP-dc:Title='Dünen' -EXIF:ImageDescription='Sand and wind' -Keywords=quarantine \
    -EXIF:Artist='Ada Lovelace' -GPSLatitude=12.5 -GPSLatitudeRef=N -GPSLongitude=45.25 -GPSLongitudeRef=E "$work/picture.jpg"
halvora publish -v "$work/picture.jpg" || fail 'the picture did not go up'
grep -qF '320' "$work/out" || fail 'the log does not tell the size'
field() { admin uploads | jq -r ".[-1].fields.$1 // .[-1].$1 // empty"; }
for expected in title=Dünen description='Sand and wind' tags= is_public=0 is_friend=0 is_family=1 safety_level=2 \
    content_type=2 hidden=2 async=0; do
    [ "$(field "${expected%%=*}")" = "${expected#*=}" ] ||
        fail "the form has $(field "${expected%%=*}"), not $expected; $(admin uploads | head -c 1500)"
done

# The picture itself: arrived SIDES SUBSAMPLING QUANTISATION
arrived() {
    local file tells
    file=$(field path)
    tells=$(exiftool -s3 -n -p '$ImageWidth x $ImageHeight, $YCbCrSubSampling, $Artist' "$file")
    [ "$tells" = "$1, $2, Ada Lovelace" ] || fail "the picture that arrived tells $tells, not $1, $2"
    # The first step of the first table goes from 16, by the quality: 5 at 85, 8 at 75.
    [ "$(od -An -v -tx1 "$file" | tr -d ' \n' | grep -o 'ffdb....00..' | head -n 1 | cut -c 11-)" = "$3" ] || fail "not quantised by $3"
    [ -z "$(exiftool -GPS:all -XMP:GPS* "$file")" ] || fail 'the position went along'
}
arrived '320 x 213' '1 1' 05

# Minimized and asynchronous, both chosen in the sheet.
sheet 80 24
sees 'Who can see the published photos?'
keys 4 Tab
key Space
sees '[x] Use Flickr asynchronous'
keys 2 C-NPage
sees '[JPEG Settings]'
key Tab Space
sees '[x] Further reduce the upload size'
key Enter
closed 0
stored JPEGMinimize=1 AsyncUpload=1
halvora publish --again "$work/picture.jpg" || fail 'the picture did not go up again'
[ "$(field async)" = 1 ] || fail 'the upload was not asynchronous'
arrived '320 x 213' '2 2' 08

# An account that was read and then can't be, and the wish to forget the authorization.
sheet 80 24
key C-PPage
sees 'Name='
key Tab Enter
sees 'https://www.flickr.com/photos/'
sees 'Go to your Flickr Homepage'
stop_service
key Tab Enter
sees 'Failed to refresh account data.'
key Enter
sees '[About]'
! screen capture-pane -p | grep -qF 'Failed to' || fail 'something of the message is left on the screen'
key Tab Tab Space
sees '[x] Revoke authorization'
key Enter
closed 0
sees 'The authorization is forgotten'
halvora account
grep -qF 'No account is set' "$work/out" || fail 'the authorization is still there'
echo 'What is chosen in the sheet arrives.'
