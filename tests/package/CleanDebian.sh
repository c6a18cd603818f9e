#!/usr/bin/env bash
# Tries the Debian packages in a new Debian 12: CleanDebian.sh HALVORA FLICKR-LOOPBACK
# Installs a minimal system from Debian's mirror, or from that of HALVORA_DEBIAN_MIRROR (a line of
# sources.list), into a temporary folder; there apt installs the packages, a user publishes, and apt removes them.
# Takes minutes and needs root.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
picture=/usr/share/backgrounds/mate/nature/Dune.jpg
trial=$(mktemp -d)
trap 'rm -rf "$trial"' EXIT
cp "$1" "$trial/halvora.deb"
cp "$2" "$trial/service.deb"
mkdir "$trial"/{package,scenarios}
cp "$here/InstalledPrograms.sh" "$trial/package"
cp "$here/../scenarios/Service.sh" "$trial/scenarios"
cp "$picture" "$trial/picture.jpg"
cat >"$trial/try.sh" <<'TRY'
set -eu
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
find /usr /etc /var/lib/halvora 2>/dev/null | sort >/trial/before || true
apt-get install -y -q -o APT::Install-Recommends=true /trial/halvora.deb >/trial/apt.log 2>&1 || { cat /trial/apt.log; exit 1; }
! command -v flickr-loopback || { echo 'FAILED: the service came along unasked'; exit 1; }
for needed in xdg-open proxy; do command -v $needed >/dev/null || { echo "FAILED: no $needed came along"; exit 1; }; done
apt-get install -y -q /trial/service.deb >/trial/apt.log 2>&1 || { cat /trial/apt.log; exit 1; }
useradd --create-home user
su user -c 'bash /trial/package/InstalledPrograms.sh /usr/bin /trial/picture.jpg'
[ ! -e /home/user/.local ] || { echo 'FAILED: something was written beside the profile'; exit 1; }
apt-get purge -y -q halvora flickr-loopback >/dev/null
! find / -xdev -path /trial -prune -o -path /proc -prune -o \( -path '*halvora*' -o -path '*flickr-loopback*' \) -print | grep -v '^/trial$' |
    grep . || { echo 'FAILED: something stays behind'; exit 1; }
echo 'Installed, used and removed.'
TRY
chmod -R a+rX "$trial"
mmdebstrap --quiet --mode=auto --variant=apt --format=null \
    --customize-hook="mkdir \"\$1/trial\" && cp -r \"$trial\"/* \"\$1/trial\"" \
    --customize-hook='chroot "$1" sh /trial/try.sh >&2' \
    bookworm - ${HALVORA_DEBIAN_MIRROR:+"$HALVORA_DEBIAN_MIRROR"}
