#!/usr/bin/env bash
# What a user chooses in the settings sheet arrives: Settings.sh FOLDER-OF-THE-PROGRAMS
# From the sheet in a terminal, played by what is typed into it, to the registry, the state line, the log,
# the fields of an upload and the picture itself. The first step that isn't as promised ends the test.
set -euo pipefail
bin=$(cd "$1" && pwd)
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Host.sh
. "$(dirname "$0")/Host.sh"
finish() {
    close_terminal
    stop_service
    rm -rf "$work"
}
trap finish EXIT
# Opens the sheet in a terminal of a size: sheet COLUMNS ROWS
sheet() {
    open_terminal "$1" "$2" \
        "echo before; stty -a >'$work/stty'; '$bin/halvora' --profile '$work/profile' settings; echo \$? >'$work/code'; stty -a | cmp - '$work/stty' && echo unchanged"
    sees 'Cancel ]'
}
# The sheet has gone, and left the terminal as it was: closed CODE
closed() {
    ends_with "$1"
    sees 'unchanged'
    sees 'before'
    ! on_screen | grep -qF 'Cancel ]' || fail 'something of the sheet is left on the screen'
}
stored() {
    expect 0 settings
    local setting
    for setting in "$@"; do
        grep -qE "^${setting%%=*} *= *\"?${setting#*=}\"?( |\$)" <(sed 's/  */ /g' "$work/out") || fail "not stored: $setting"
    done
}
export LC_ALL=C.UTF-8
start_service "$bin/flickr-loopback" store --token tok:sec
set_token

# Cancelled in all ways, nothing is kept.
expect 0 settings
cp "$work/out" "$work/defaults"
for way in Escape C-c; do
    sheet 80 24
    sees 'Who can see the published photos?'
    key Space
    sees '[x] Set uploaded photo'
    key "$way"
    closed 0
done
expect 0 settings
cmp -s "$work/out" "$work/defaults" || fail 'a cancelled sheet stored something'

# A terminal that nobody knows gets the list.
open_terminal 80 40 "TERM=nosuchterm '$bin/halvora' --profile '$work/profile' settings"
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
    sees 'tags are no longer sent'
}
wanted=(WriteTitle=1 WriteDescription=1 WriteTags=0 IsPublic=0 IsFriend=0 IsFamily=1 AsyncUpload=1 SafetyLevel=1
    ContentType=1 SearchVisibility=1 JPEGMode=2 JPEGMinimize=0 JPEGWriteGPS=0 'JPEGLongDimension=320 px'
    RAWMinimize=0 'RAWLongDimension=500 px')
names=$(printf '%s\n' "${wanted[@]}" | sed 's/=.*/=/')
for size in '80 24' '40 12'; do
    # shellcheck disable=SC2086
    expect 0 settings $names
    # shellcheck disable=SC2086
    walk $size
    stored "${wanted[@]}"
done

# What the scriptable form stores, the sheet shows.
expect 0 settings 'JPEGLongDimension=1024 px' JPEGMode=0
sheet 60 15
keys 3 C-PPage
sees '(o) Upload files exactly as they are on disk'
sees 'JPEG Settings'
key Escape
closed 0
expect 0 settings JPEGMode=2 'JPEGLongDimension=320 px' AsyncUpload=0

# State line, log and form.
expect 0 status
says 320
vips black "$work/flat.png" 900 600 --bands 3
vips gaussnoise "$work/noise.png" 900 600 --sigma 40 --mean 128
vips jpegsave "$work/noise.png" "$work/picture.jpg" --Q 95
exiftool -q -overwrite_original -XMP-dc:Title='Dünen' -EXIF:ImageDescription='Sand and wind' -Keywords=quarantine \
    -EXIF:Artist='Ada Lovelace' -GPSLatitude=12.5 -GPSLatitudeRef=N -GPSLongitude=45.25 -GPSLongitudeRef=E "$work/picture.jpg"
expect 0 publish -v "$work/picture.jpg"
says 320
field() { admin uploads | jq -r ".[-1].$1 | values"; }
for expected in title=Dünen description='Sand and wind' tags= is_public=0 is_friend=0 is_family=1 safety_level=2 \
    content_type=2 hidden=2 async=0; do
    [ "$(field "${expected%%=*}")" = "${expected#*=}" ] || fail "the form has $(field "${expected%%=*}"), not $expected"
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
expect 0 publish --again "$work/picture.jpg"
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
! on_screen | grep -qF 'Failed to' || fail 'something of the message is left on the screen'
key Tab Tab Space
sees '[x] Revoke authorization'
key Enter
closed 0
sees 'The authorization is forgotten'
expect 0 account
says 'No account is set'
echo 'What is chosen in the sheet arrives.'
