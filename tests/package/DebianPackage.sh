#!/usr/bin/env bash
# Tries the Debian package without installing it: DebianPackage.sh PACKAGE
# Checks its content and its dependencies, and that it runs from any folder into which it is unpacked.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
package=$(readlink -f "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { printf 'FAILED: %s\n' "$1" >&2; exit 1; }

# No file is missing or unexpected, and only root can write them.
dpkg-deb --contents "$package" | sed -n 's/^\(-[^ ]*\) \([^ ]*\) .* \.\/\(.*\)/\1 \2 \3/p' | LC_ALL=C sort -k 3 >"$work/content"
diff - "$work/content" <<'CONTENT' || fail 'other content than promised'
-rwxr-xr-x root/root usr/bin/flickr-loopback
-rwxr-xr-x root/root usr/bin/halvora
-rw-r--r-- root/root usr/lib/halvora/modules/Halvora.Publishing.Plugin.Flickr.so
-rw-r--r-- root/root usr/lib/halvora/modules/Halvora.WebComponents.so
-rw-r--r-- root/root usr/lib/halvora/modules/libhalvora-platform.so
-rw-r--r-- root/root usr/lib/halvora/modules/msxml.so
-rw-r--r-- root/root usr/lib/halvora/modules/windowscodecs.so
-rw-r--r-- root/root usr/share/applications/halvora.desktop
-rw-r--r-- root/root usr/share/bash-completion/completions/halvora
-rw-r--r-- root/root usr/share/doc/halvora/CLI11.txt
-rw-r--r-- root/root usr/share/doc/halvora/changelog.gz
-rw-r--r-- root/root usr/share/doc/halvora/copyright
-rw-r--r-- root/root usr/share/doc/halvora/nlohmann-json.txt
-rw-r--r-- root/root usr/share/fish/vendor_completions.d/halvora.fish
-rw-r--r-- root/root usr/share/icons/hicolor/scalable/apps/halvora.svg
-rw-r--r-- root/root usr/share/man/man1/flickr-loopback.1.gz
-rw-r--r-- root/root usr/share/man/man1/halvora.1.gz
-rw-r--r-- root/root usr/share/metainfo/example.halvora.Halvora.metainfo.xml
-rw-r--r-- root/root usr/share/zsh/vendor-completions/_halvora
CONTENT

# It depends on the packages of what it loads and calls, and Debian has all of them.
needs=$(dpkg-deb --field "$package" Depends)
for name in ca-certificates libc6 libcurl4 libexiv2-27 libicu72 libraw20 libsqlite3-0 libssl3 libvips42 libxml2; do
    [[ ", $needs," =~ ,\ $name[\ ,] ]] || fail "no dependency on $name"
done
[[ $needs != *-dev* ]] || fail "a dependency on what only building needs: $needs"
! grep -q 'libasan\|libubsan' <<<"$needs" || fail 'sanitizers in a package'
recommends=$(dpkg-deb --field "$package" Recommends)
[ "$recommends" = xdg-utils ] || fail "recommends: $recommends"
apt-get install --simulate --no-install-recommends -q "$package" >"$work/apt" 2>&1 || {
    cat "$work/apt" >&2
    fail 'apt-get would not install it'
}

# Unpacked into an unusual folder, it finds its own modules and no others.
unpacked="$work/für alle 写真/root"
mkdir -p "$unpacked"
dpkg-deb --extract "$package" "$unpacked"
unset LD_LIBRARY_PATH
for file in "$unpacked"/usr/bin/* "$unpacked"/usr/lib/halvora/modules/*; do
    name=${file##*/}
    libraries=$(ldd "$file")
    ! grep 'not found' <<<"$libraries" || fail "$name lacks a library"
    ! grep 'libhalvora' <<<"$libraries" | grep -vF "$unpacked/" || fail "$name takes modules from elsewhere"
    ! readelf -SW "$file" | grep '\.debug_\|\.symtab' || fail "$name is not stripped"
    # shellcheck disable=SC2016
    ! readelf -dW "$file" | grep 'R.*PATH' | grep -vF '[$ORIGIN' || fail "$name looks for libraries in a folder of the builder"
done
! readelf -dW "$unpacked/usr/bin/flickr-loopback" | grep 'R.*PATH' || fail 'flickr-loopback needs no path'
version=$(dpkg-deb --field "$package" Version)
[ "$("$unpacked/usr/bin/halvora" --version | head -n 1)" = "halvora $version" ] || fail 'the program has another version than the package'
for page in halvora flickr-loopback; do
    warnings=$(zcat "$unpacked/usr/share/man/man1/$page.1.gz" | LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -l - 2>&1 >"$work/page")
    [ -z "$warnings" ] || fail "man page $page: $warnings"
    grep -qF "halvora $version" "$work/page" || fail "the man page $page tells another version"
done
"$here/InstalledPrograms.sh" "$unpacked/usr/bin" /usr/share/backgrounds/mate/nature/Dune.jpg
echo 'The package holds what it promises.'
