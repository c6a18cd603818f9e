#!/usr/bin/env bash
# Tries the Debian packages without installing them: DebianPackages.sh HALVORA FLICKR-LOOPBACK
# Checks their content and their dependencies, and that they run from any folder into which they are unpacked.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
host=$(readlink -f "$1")
service=$(readlink -f "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { printf 'FAILED: %s\n' "$1" >&2; exit 1; }

# No file is missing or unexpected, and only root can write them.
for package in "$host" "$service"; do
    dpkg-deb --contents "$package" |
        sed -n 's/^\(-[^ ]*\) \([^ ]*\) .* \.\/\(.*\)/\1 \2 \3/p' | LC_ALL=C sort -k 3
    echo
done >"$work/content"
diff - "$work/content" <<'CONTENT' || fail 'other content than promised'
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
-rw-r--r-- root/root usr/share/fish/vendor_completions.d/halvora.fish
-rw-r--r-- root/root usr/share/icons/hicolor/scalable/apps/halvora.svg
-rw-r--r-- root/root usr/share/man/man1/halvora.1.gz
-rw-r--r-- root/root usr/share/metainfo/example.halvora.Halvora.metainfo.xml
-rw-r--r-- root/root usr/share/zsh/vendor-completions/_halvora

-rwxr-xr-x root/root usr/bin/flickr-loopback
-rw-r--r-- root/root usr/share/doc/flickr-loopback/CLI11.txt
-rw-r--r-- root/root usr/share/doc/flickr-loopback/changelog.gz
-rw-r--r-- root/root usr/share/doc/flickr-loopback/copyright
-rw-r--r-- root/root usr/share/doc/flickr-loopback/nlohmann-json.txt
-rw-r--r-- root/root usr/share/man/man1/flickr-loopback.1.gz

CONTENT

# They depend on the packages of what they load and call, and Debian has all of them. What only the service needs
# doesn't come with the program.
needs() { # PACKAGE NAME...
    local all name package=$1
    all=$(dpkg-deb --field "$package" Depends)
    for name in "${@:2}"; do [[ ", $all," =~ ,\ ${name}[\ ,] ]] || fail "$package: no dependency on $name"; done
    [[ $all != *-dev* ]] || fail "$package: a dependency on what only building needs: $all"
    ! grep -q 'libasan\|libubsan' <<<"$all" || fail "$package: sanitizers in a package"
    apt-get install --simulate --no-install-recommends -q "$package" >"$work/apt" 2>&1 || {
        cat "$work/apt" >&2
        fail "apt-get would not install $package"
    }
}
needs "$host" ca-certificates libc6 libcurl4 libexiv2-27 libicu72 libraw20 libsqlite3-0 libssl3 libvips42 libxml2
needs "$service" libc6 libexiv2-27 libmicrohttpd12 libsqlite3-0 libssl3
! grep -q microhttpd <<<"$(dpkg-deb --field "$host" Depends)" || fail 'the program depends on what only the service needs'
promises=$(dpkg-deb --field "$host" Recommends Suggests)
[ "$promises" = 'Recommends: xdg-utils
Suggests: flickr-loopback' ] || fail "other promises: $promises"

# Unpacked into an unusual folder, it finds its own modules and no others.
unpacked="$work/für alle 写真/root"
mkdir -p "$unpacked"
for package in "$host" "$service"; do dpkg-deb --extract "$package" "$unpacked"; done
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
version=$(dpkg-deb --field "$host" Version)
[ "$("$unpacked/usr/bin/halvora" --version | head -n 1)" = "halvora $version" ] || fail 'the program has another version than the package'
for page in halvora flickr-loopback; do
    warnings=$(zcat "$unpacked/usr/share/man/man1/$page.1.gz" | LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -l - 2>&1 >"$work/page")
    [ -z "$warnings" ] || fail "man page $page: $warnings"
    grep -qF "halvora $version" "$work/page" || fail "the man page $page tells another version"
done
"$here/InstalledPrograms.sh" "$unpacked/usr/bin" /usr/share/backgrounds/mate/nature/Dune.jpg
echo 'The packages hold what they promise.'
