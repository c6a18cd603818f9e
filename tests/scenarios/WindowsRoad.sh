#!/usr/bin/env bash
# The product on Windows as a person meets it, from the zip to the pictures on the service, and away again
# without a trace: WindowsRoad.sh ZIP SERVICE PARTNER DRIVER [FOLDER]
# A new Windows of Wine's on a display that nobody sees; SERVICE is flickr-loopback, PARTNER the proxy that
# leads to it, DRIVER (host_driver.exe) works on the windows, Chromium on the page. With FOLDER pictures of the
# host are left there. Every step says what it saw; the first that isn't as promised ends the test.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
zip=$1 service_program=$2 partner_program=$3 driver_program=$4 pictures_folder=${5-}
for program in "$service_program" "$partner_program" "$driver_program" "$zip"; do
    [ -f "$program" ] || {
        echo "FAILED: there is no $program. The service is built by the native preset, the rest by this one." >&2
        exit 1
    }
done
work=$(mktemp -d)
export HALVORA_WINEPREFIX=$work/wine LC_ALL=C.UTF-8
service= partner= screen= host=
finish() {
    exec 7>&-
    "$root/tools/browser" stop "$work/browser" 2>/dev/null || true
    WINEPREFIX=$HALVORA_WINEPREFIX wineserver -k 2>/dev/null || true
    WINEPREFIX=$HALVORA_WINEPREFIX wineserver -w 2>/dev/null || true
    for process in $service $partner $screen; do kill "$process" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work" 2>/dev/null || { sleep 1; rm -rf "$work"; }
}
trap finish EXIT
fail() {
    printf 'FAILED: %s\n' "$1" >&2
    for log in "$work"/out "$work"/driver.log "$work"/host.log "$work"/browser/person.log; do
        [ ! -s "$log" ] || { echo "--- ${log##*/}" >&2; tail -n 60 "$log" >&2; }
    done
    exit 1
}
await_file() { for _ in $(seq 600); do [ ! -f "$1" ] || return 0; sleep 0.1; done; fail "$2"; }

windows() { "$root/tools/run-wine" "$@" </dev/null 2>/dev/null; }
driver() { "$root/tools/run-wine" "$driver_program" "$@" </dev/null 2>"$work/driver.log" || fail "host-driver $*"; }
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
control() { sed -nE "s/^#define $1 +([0-9]+).*/\1/p" "$root/host/window/resource.h"; }
admin() { curl -sS --noproxy '*' "$@"; }
uploads() { admin "${HALVORA_LOOPBACK_GALLERY}_loopback/uploads"; }
fault() { admin --data-urlencode "$@" >/dev/null; }
picture() {
    [ -n "$pictures_folder" ] || return 0
    sleep 1 # until all is painted
    driver picture "$main_window" "$(windows_path "$work/picture.png")"
    mv "$work/picture.png" "$pictures_folder/$1.png"
}

# The service, and a proxy through which Windows comes to it by the names that it has on the network.
"$service_program" --port 0 --store "$work/store" --ready-file "$work/env" >"$work/service.log" 2>&1 &
service=$!
await_file "$work/env" 'the service did not start'
# shellcheck disable=SC1091
. "$work/env"
export HALVORA_LOOPBACK_PORT HALVORA_CA_FILE
mkdir "$work/partner" "$work/pictures"
mkfifo "$work/leash"
leads=()
for name in api.flickr.com www.flickr.com up.flickr.com authorization.halvora.example; do
    leads+=("$name=$HALVORA_LOOPBACK_PORT")
done
"$partner_program" "$work/partner" "${leads[@]}" <"$work/leash" &
partner=$!
exec 7>"$work/leash"
await_file "$work/partner/port" 'the proxy did not start'
proxy=127.0.0.1:$(<"$work/partner/port")

# A new Windows. WinHTTP in Wine knows the proxy by the variables, WinINet by the registry. What a program
# opens in the browser comes to the person of tools/person.
Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 7>&- >"$work/screen" 2>/dev/null &
screen=$!
for _ in $(seq 300); do [ ! -s "$work/screen" ] || break; sleep 0.1; done
[ -s "$work/screen" ] || fail 'no display: Xvfb (package xvfb) does not start'
export DISPLAY=":$(<"$work/screen")" http_proxy="http://$proxy" https_proxy="http://$proxy"
export PATH="$root/tools/person:$PATH" HALVORA_BROWSER=$work/browser HALVORA_ANSWER=Allow
"$root/tools/browser" start "$work/browser" 7>&- || fail 'no browser starts (package chromium)'
{
    windows cmd /c exit
    internet='HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings'
    windows reg add "$internet" /v ProxyEnable /t REG_DWORD /d 1 /f
    windows reg add "$internet" /v ProxyServer /t REG_SZ /d "$proxy" /f
    # The frames of windows are drawn in a desktop of Wine's own; there is no window manager on this display.
    windows reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Trial /f
    windows reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Trial /d 1280x1024 /f
} 7>&- >/dev/null
if [ -d /usr/share/wine/fonts ]; then cp /usr/share/wine/fonts/*.ttf "$HALVORA_WINEPREFIX/drive_c/windows/Fonts/"; fi
driver trust

# Installed for this user, by the script of the zip.
unzip -q "$zip" -d "$work/unpacked"
home=$HALVORA_WINEPREFIX/drive_c/users/$(id -un)/AppData/Local
(cd "$work/unpacked"/* && windows cmd /c install.cmd /quiet) >"$work/out" || fail 'install.cmd fails'
installed="$home/Halvora/Publish to Flickr"
[ -f "$installed/halvora.exe" ] || fail 'the host is not installed'
# Classes of one user don't count for Wine; when that is no longer so, this can go.
publisher={46519402-3380-4D48-BC76-63FFAA27165C}
! windows "$driver_program" has-class "$publisher" || fail 'Wine sees the classes of one user: the detour can go'
modules=(Halvora.Publishing.Plugin.Flickr Halvora.WebComponents)
for module in "${modules[@]}"; do windows regsvr32 /s "$(windows_path "$installed/$module.dll")"; done
driver has-class "$publisher"
