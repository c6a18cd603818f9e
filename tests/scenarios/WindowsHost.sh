#!/usr/bin/env bash
# The product on Windows as a user meets it, from the zip to the pictures on the service, and away again
# without a trace: WindowsHost.sh ZIP SERVICE PROXY DRIVER [FOLDER]
# A new Windows of Wine's on a display that nobody sees; SERVICE is flickr-loopback, PROXY the proxy that
# leads to it, DRIVER (host_driver.exe) works on the windows, Chromium on the page. With FOLDER pictures of the
# host are left there, named by the dots per inch, HALVORA_DPI or 96. Every step says what it saw; the first that
# isn't as promised ends the test.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
zip=$1 service_program=$2 proxy_program=$3 driver_program=$4 pictures_folder=${5-}
dots=${HALVORA_DPI:-96}
unset HALVORA_DPI
for program in "$service_program" "$proxy_program" "$driver_program" "$zip"; do
    [ -f "$program" ] || {
        echo "FAILED: there is no $program. The service is built by the native preset, the rest by this one." >&2
        exit 1
    }
done
work=$(mktemp -d)
# shellcheck source=tests/scenarios/Service.sh
. "$(dirname "$0")/Service.sh"
export HALVORA_WINEPREFIX=$work/wine LC_ALL=C.UTF-8
WINEDLLPATH=$(dirname "$(dirname "$(readlink -f "$driver_program")")")/wine-system
export WINEDLLPATH
proxy_process='' screen='' host=''
finish() {
    exec 7>&-
    "$root/tools/browser" stop "$work/browser" 2>/dev/null || true
    WINEPREFIX=$HALVORA_WINEPREFIX wineserver -k 2>/dev/null || true
    WINEPREFIX=$HALVORA_WINEPREFIX wineserver -w 2>/dev/null || true
    stop_service
    for process in $proxy_process $screen; do kill "$process" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work" 2>/dev/null || { sleep 1; rm -rf "$work"; }
}
trap finish EXIT
fail() {
    printf 'FAILED: %s\n' "$1" >&2
    "$root/tools/run-wine" "$driver_program" screen </dev/null >"$work/screen.log" 2>/dev/null || true
    for log in "$work"/out "$work"/driver.log "$work"/host.log "$work"/browser/user.log "$work/screen.log"; do
        [ ! -s "$log" ] || { echo "--- ${log##*/}" >&2; tail -n 60 "$log" >&2; }
    done
    exit 1
}
trap 'fail "line $LINENO: $BASH_COMMAND: exit code $?"' ERR

end_windows() { WINEPREFIX=$HALVORA_WINEPREFIX wineserver -k || true; WINEPREFIX=$HALVORA_WINEPREFIX wineserver -w; }
windows() { "$root/tools/run-wine" "$@" </dev/null 2>/dev/null; }
# Wine's own tools have failed without a word in a Windows that was new.
set_value() {
    for _ in 1 2 3; do ! windows reg add "$@" /f || return 0; done
    fail "reg add $*: not even the third time"
}
driver() { "$root/tools/run-wine" "$driver_program" "$@" </dev/null 2>"$work/driver.log" || fail "host-driver $*"; }
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
control() { sed -nE "s/^#define $1 +([0-9]+).*/\1/p" "$root/host/window/resource.h" "$root/resources/resource.h"; }
picture() {
    [ -n "$pictures_folder" ] || return 0
    sleep 1 # until all is painted
    driver picture "$main_window" "$(windows_path "$work/picture.png")"
    mv "$work/picture.png" "$pictures_folder/$1.png"
}

# The service, and a proxy through which Windows comes to it by the names that it has on the network.
start_service "$service_program" store
mkdir "$work/proxy"
mkfifo "$work/leash"
leads=()
for name in api.flickr.com www.flickr.com up.flickr.com authorization.halvora.example; do
    leads+=("$name=$HALVORA_LOOPBACK_PORT")
done
"$proxy_program" "$work/proxy" "${leads[@]}" <"$work/leash" &
proxy_process=$!
exec 7>"$work/leash"
await_file "$work/proxy/port" 'the proxy did not start'
proxy=127.0.0.1:$(<"$work/proxy/port")

# A new Windows. WinHTTP in Wine knows the proxy by the variables, WinINet by the registry. What a program
# opens in the browser comes to the user of tools/user.
Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 7>&- >"$work/screen" 2>/dev/null &
screen=$!
for _ in $(seq 300); do [ ! -s "$work/screen" ] || break; sleep 0.1; done
[ -s "$work/screen" ] || fail 'no display: Xvfb (package xvfb) does not start'
DISPLAY=:$(<"$work/screen")
export DISPLAY http_proxy="http://$proxy" https_proxy="http://$proxy"
export PATH="$root/tools/user:$PATH" HALVORA_BROWSER=$work/browser HALVORA_ANSWER=Allow
"$root/tools/browser" start "$work/browser" 7>&- || fail 'no browser starts (package chromium)'
{
    windows cmd /c exit
    internet='HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings'
    set_value "$internet" /v ProxyEnable /t REG_DWORD /d 1
    set_value "$internet" /v ProxyServer /t REG_SZ /d "$proxy"
    # The frames of windows are drawn in a desktop of Wine's own; there is no window manager on this display.
    set_value 'HKCU\Software\Wine\Explorer' /v Desktop /d Trial
    set_value 'HKCU\Software\Wine\Explorer\Desktops' /v Trial /d 1280x1024
    set_value 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$dots"
} 7>&- >/dev/null
end_windows # so that the next program makes that desktop
cp /usr/share/wine/fonts/*.ttf "$HALVORA_WINEPREFIX/drive_c/windows/Fonts/"
driver trust

# Installed for this user, by the script of the zip.
unzip -q "$zip" -d "$work/unpacked"
home=$HALVORA_WINEPREFIX/drive_c/users/$(id -un)/AppData/Local
(cd "$work/unpacked"/* && windows cmd /c install.cmd /quiet) >"$work/out" || fail 'install.cmd fails'
installed="$home/Halvora/Publish to Flickr"
[ -f "$installed/HalvoraPublish.exe" ] || fail 'the host is not installed'
# Classes of one user don't count for Wine; when that is no longer so, this can go.
publisher='{46519402-3380-4D48-BC76-63FFAA27165C}'
! windows "$driver_program" has-class "$publisher" || fail 'Wine sees the classes of one user: the detour can go'
modules=(Halvora.Publishing.Plugin.Flickr Halvora.WebComponents)
for module in "${modules[@]}"; do
    windows regsvr32 /s "$(windows_path "$installed/$module.dll")" || fail "regsvr32 can't register $module.dll"
done
driver has-class "$publisher"

# Three pictures, one with letters of its own in its name, opened with the host.
from=/usr/share/backgrounds/mate/nature
pictures=$HALVORA_WINEPREFIX/drive_c/Pictures
mkdir "$pictures"
cp "$from/Dune.jpg" "$from/LadyBird.jpg" "$pictures"
cp "$from/RainDrops.jpg" "$pictures/Regen für später.jpg"
# The second is more than all buffers on the way to the service hold: stopped half-way, it can't have been sent whole.
# Of one that was, the host would not know whether it arrived, and would not send it again.
head -c 30000000 /dev/zero >>"$pictures/LadyBird.jpg"
files=()
for file in "$pictures"/*; do files+=("C:\\Pictures\\${file##*/}"); done
program='C:\users\'$(id -un)'\AppData\Local\Halvora\Publish to Flickr\HalvoraPublish.exe'
: >"$work/stamp"
start_host() {
    "$root/tools/run-wine" "$program" "${files[@]}" </dev/null >"$work/host.log" 2>&1 7>&- &
    host=$!
    driver await-rows "$main_window" "$list" 3
}
end_host() {
    driver close "$main_window"
    wait "$host" || fail "the host ends with $?"
}
# Once more: seen once on a busy machine, what the new prefix's first programs stored was not trusted by later ones.
driver trust
main_window='Halvora'
list=$(control IDC_PICTURES) state=$(control IDC_STATE) status=$(control IDC_STATUS)
publish=$(control IDC_PUBLISH) cancel=$(control IDC_CANCEL)
shows() { driver await-text "$main_window" "$1" "$2"; }
start_host

# The permission, asked for in the browser.
shows "$state" 'needs your permission'
driver follow "$main_window" "$state" authorize
driver answer 'Authorize Halvora Professional' 1
await_file "$work/browser/user.log" 'no browser was started'
await_file "$work/browser/answered" 'nobody has answered in the browser'
grep -qF 'May Halvora upload photos to your account?' "$work/browser/page.txt" || fail 'the browser shows another page'
driver answer 'Authorization Completion' 1
shows "$state" 'Settings...'

# The settings by their sheet: files as they are.
sheet() {
    driver follow "$main_window" "$state" settings
    driver await "$sheet_window"
}
sheet_window='Publish to Flickr'
ok=1
sheet
driver page "$sheet_window" 2
driver press "$sheet_window" "$(control IDC_MODE_AS_IS)"
driver press "$sheet_window" $ok
driver await-end "$sheet_window"
shows "$state" 'Send JPEG files intact'
driver await-row "$main_window" "$(control IDC_LOG)" 'titles are no longer sent'
picture "host-$dots"

# A run that is stopped while the second picture is under way: what hadn't arrived is still to do.
admin faults -d 'kind=stall&skip=1&after=100000&ms=600000&target=upload' >/dev/null
driver press "$main_window" "$publish"
for _ in $(seq 300); do [ "$(uploads | jq length)" = 0 ] || break; sleep 0.1; done
shows "$status" 'Published 1 of 3'
picture "host-run-$dots"
driver press "$main_window" "$cancel"
driver press "$main_window" "$cancel"
shows "$status" 'Cancelled, aborted uploads.'
driver await-button "$main_window" "$publish"
[ "$(uploads | jq length)" = 1 ] || fail 'a picture arrived though the run was stopped'

# What arrives is what was sent, each once.
driver press "$main_window" "$publish"
shows "$status" 'Done.'
[ "$(uploads | jq length)" = 3 ] || fail "not three uploads: $(uploads | jq -c '[.[].title]')"
for file in "$pictures"/*; do
    sum=$(sha256sum <"$file")
    uploads | jq -e --arg sum "${sum%% *}" 'any(.sha256 == $sum)' >/dev/null ||
        fail "${file##*/} did not arrive as it is"
done
uploads | jq -e 'any(.file_name == "Regen für später.jpg")' >/dev/null || fail 'the name did not arrive as it is'

# The token pair lies where the host keeps the account, and in no other file of this Windows: as UTF-8, as
# UTF-16, or as the numbers of a registry file.
token=$(uploads | jq -r '.[-1].token')
[ ${#token} -gt 8 ] || fail "no token in the service's list"
hexadecimal() { iconv -f UTF-8 -t "$1" <<<"$2" | head -c "$3" | od -An -v -tx1 | tr -d ' \n'; }
holders() { # TEXT
    local file narrow wide
    narrow=$(hexadecimal UTF-8 "$1" ${#1}) wide=$(hexadecimal UTF-16LE "$1" $((2 * ${#1})))
    while IFS= read -r -d '' file; do
        if LC_ALL=C grep -qaF -- "$1" "$file" || tr -d '\0' <"$file" | LC_ALL=C grep -qaF -- "$1" ||
            { [[ $file = *.reg ]] && tr -d ',\\ \n' <"$file" | grep -qaF -e "$narrow" -e "$wide"; }; then
            printf '%s\n' "${file#"$HALVORA_WINEPREFIX/"}"
        fi
    done < <(find "$HALVORA_WINEPREFIX" -type f -newer "$work/stamp" -print0)
}
end_host
end_windows # which writes the registry's files
mapfile -t found < <(holders "$token")
[ ${#found[@]} -eq 1 ] || fail "the token is in ${#found[@]} files: ${found[*]}"
mapfile -t pair < <(strings -n 8 -e l "$HALVORA_WINEPREFIX/${found[0]}" | grep -A1 -F -- "$token" | head -n 2)
[ ${#pair[@]} -eq 2 ] || fail "no token pair in ${found[0]}"
[ "$(holders "${pair[1]}")" = "${found[0]}" ] || fail 'the secret is elsewhere too'

# Remembered, and then revoked by the sheet's last page.
start_host
shows "$state" 'Send JPEG files intact'
sheet
driver page "$sheet_window" 4
driver press "$sheet_window" "$(control IDC_REVOKE)"
driver press "$sheet_window" $ok
driver await-end "$sheet_window"
shows "$state" 'needs your permission'
end_host
end_windows
for secret in "${pair[@]}"; do
    holder=$(holders "$secret")
    [ -z "$holder" ] || fail "a secret stands in $holder"
done

# Away again: nothing but the settings stays, and no copy of a picture.
for module in "${modules[@]}"; do
    windows regsvr32 /s /u "$(windows_path "$installed/$module.dll")" || fail "regsvr32 can't take back $module.dll"
done
(cd "$work/unpacked"/* && windows cmd /c uninstall.cmd /quiet) >"$work/out" || fail 'uninstall.cmd fails'
[ ! -e "$home/Halvora" ] || fail "left: $(find "$home/Halvora")"
end_windows
# Each value with the key that it stands in.
for hive in user system; do
    awk '/^\[/ { key = $0 }
        tolower(key $0) ~ /halvora|46519402|bfb39c79|20fb81f4|bf23f6e1|c6338984/ { print key " " $0 }' \
        "$HALVORA_WINEPREFIX/$hive.reg"
done | tr -d '\r' >"$work/left"
! grep -vi '^\[Software\\\\TRNQ\\\\Halvora\\\\Publishing\\\\Plugins\\\\{46519402' "$work/left" >"$work/out" ||
    fail 'left in the registry'
grep -qi 'Plugins\\\\{46519402' "$work/left" || fail 'the settings are gone too'
copies=$(find "$HALVORA_WINEPREFIX/drive_c/users" "$HALVORA_WINEPREFIX/drive_c/windows/temp" -ipath '*/temp/*' -type f)
[ -z "$copies" ] || fail "left: $copies"
echo 'Installed, authorized, published, cancelled, revoked, removed.'
