#!/usr/bin/env bash
# Tries the zip for Windows as a user would: WindowsZip.sh ZIP
# Unpacks, installs, reinstalls and removes it in a temporary Wine prefix, in folders with difficult names,
# and checks the messages when something can't be done.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
zip=$(readlink -f "$1")
work=$(mktemp -d)
export HALVORA_WINEPREFIX=$work/wine LC_ALL=C.UTF-8
finish() {
    WINEPREFIX=$HALVORA_WINEPREFIX wineserver -k 2>/dev/null || true
    WINEPREFIX=$HALVORA_WINEPREFIX wineserver -w 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT
tell() { printf 'FAILED: %s\n' "$1" >&2; [ ! -f "$work/out" ] || cat "$work/out" >&2; tail -n 20 "$work/wine.log" >&2; }
fail() { tell "$1"; trap - ERR; exit 1; }
set -o errtrace
trap 'tell "line $LINENO: $BASH_COMMAND: exit code $?"' ERR
windows() { "$here/../../tools/run-wine" "$@" </dev/null 2>>"$work/wine.log"; }
# Repeats a tool of Wine's own: they have failed silently in a new prefix, and aren't what is tried here.
wine_tool() {
    for _ in 1 2 3; do ! windows "$@" >>"$work/wine.log" || return 0; done
    fail "$*: not even the third time"
}
says() { grep -qF -- "$1" "$work/out" || fail "nothing said of: $1"; }

# The programs need only libraries that every Windows has, and the texts have Windows' line ends.
unpacked="$work/Entpackt für 写真 (neu)"
unzip -q "$zip" -d "$unpacked"
[ "$(ls "$unpacked")" = "$(basename "$zip" .zip)" ] || fail 'the zip unpacks into more than one folder of its own name'
unpacked="$unpacked/$(basename "$zip" .zip)"
modules=()
for file in "$unpacked"/*; do
    name=${file##*/}
    case $name in
    *.dll | *.exe)
        ! x86_64-w64-mingw32-objdump -p "$file" | grep -i 'DLL Name: lib' || fail "$name needs a library of the compiler"
        ! x86_64-w64-mingw32-objdump -h "$file" | grep '\.debug_' || fail "$name is not stripped"
        case $name in *.dll) modules+=("$name") ;; esac
        ;;
    *.cmd | *.txt)
        [ "$(grep -c $'\r$' "$file")" = "$(wc -l <"$file")" ] || fail "$name has line ends of Unix"
        ! LC_ALL=C grep -q '[^ -~[:cntrl:]]' "$file" || fail "$name has letters that depend on the code page"
        ;;
    Licences) for text in Halvora mingw-w64 gcc GPL-3; do [ -s "$file/$text.txt" ] || fail "the text $text is missing"; done ;;
    *) fail "$name should not be there" ;;
    esac
done
[[ " ${modules[*]} " = *' Halvora.Publishing.Plugin.Flickr.dll '* ]] || fail 'the plug-in is missing'
grep -q 'Runtime Library Exception' "$unpacked/Licences/gcc.txt" || fail 'the exception of the GCC runtime is missing'

# Prints the user's and the machine's registry. The keys that contain all classes and all programs exist beforehand.
for container in Classes\\{AppID,CLSID,TypeLib,Interface} Microsoft\\Windows\\CurrentVersion\\Uninstall; do
    wine_tool reg add "HKCU\\Software\\$container" /f
done
settings='HKCU\SOFTWARE\TRNQ\Halvora\Trial'
wine_tool reg add "$settings" /v Kept /t REG_SZ /d yes /f
registry() {
    rm -f "$work"/{user,machine}.reg
    wine_tool regedit /E "Z:${work//\//\\}\\user.reg" 'HKEY_CURRENT_USER\Software'
    wine_tool regedit /E "Z:${work//\//\\}\\machine.reg" 'HKEY_LOCAL_MACHINE\Software\Classes'
    # Wine registers type libraries for the whole machine even if asked for one user; that isn't our fault.
    for part in user machine; do iconv -f UTF-16 -t UTF-8 "$work/$part.reg" | tr -d '\r'; done |
        awk -v RS= -v ORS='\n\n' -v rest="$work/by-wine" 'BEGIN { printf "" >rest }
            tolower($1) ~ /^\[hkey_current_user\\software\\wine\\/ { next }
            tolower($1) ~ /^\[hkey_local.*\\(typelib|interface)\\/ { print >rest; next } { print }'
}
registry >"$work/before"
grep -q '"Kept"="yes"' "$work/before" || fail 'the registry is not read'

machine() { sed -n '/^\[HKEY_LOCAL/,$p' "$work/$1"; }

# run FOLDER SCRIPT CODE: runs SCRIPT in FOLDER as the user whose programs lie in $local
run() {
    local code=0
    (cd "$1" && windows cmd /c "set LOCALAPPDATA=$local&& $2 /quiet") | tr -d '\r' >"$work/out" || code=$?
    [ $code -eq "$3" ] || fail "$2 in $1: exit code $code, not $3"
}
start_menu=$HALVORA_WINEPREFIX/drive_c/users/$(id -un)/AppData/Roaming/Microsoft/Windows/Start\ Menu/Programs
nothing_left() {
    [ ! -e "$start_menu/Halvora Publish to Flickr.lnk" ] || fail 'the entry in the Start menu is left'
    [ ! -e "$home/Halvora" ] || fail "left: $(find "$home/Halvora")"
    registry >"$work/after"
    diff "$work/before" "$work/after" >&2 || fail 'the registry is not what it was'
}

for local in 'C:\users\jo\AppData\Local' 'C:\users\Zoë 写真 (neu)\Local'; do
    home=$HALVORA_WINEPREFIX/drive_c${local#C:}
    home=${home//\\//}
    mkdir -p "$home"
    run "$unpacked" uninstall.cmd 0
    says 'is not installed'
    for _ in once again; do run "$unpacked" install.cmd 0; done
    # Output to a pipe has the user's name in a code page.
    says '\Local\Halvora\Publish to Flickr"'
    registry >"$work/installed"
    for file in "$unpacked"/*.dll "$unpacked"/*.exe; do
        [ ! -f "$file" ] || cmp -s "$file" "$home/Halvora/Publish to Flickr/${file##*/}" || fail "${file##*/} is not in place"
    done
    [ -f "$start_menu/Halvora Publish to Flickr.lnk" ] || fail 'no entry in the Start menu'
    grep -qF '"UninstallString"="\"' "$work/installed" || fail 'not in the list of installed apps'
    for module in "${modules[@]}"; do
        grep -qF "@=\"${local//\\/\\\\}\\\\Halvora\\\\Publish to Flickr\\\\$module\"" "$work/installed" ||
            fail "$module is not registered where it lies"
    done
    # The plug-in's class and the three of the web components.
    [ "$(grep -c '"ThreadingModel"="Both"' <(comm -13 <(sort "$work/before") <(sort "$work/installed")))" -eq 4 ] ||
        fail 'not four classes for any thread'
    diff <(machine before) <(machine installed) >&2 || fail 'something is registered for the whole machine'
    grep -qi 'typelib\\{20FB81F4' "$work/by-wine" || fail 'Wine keeps the type library to the user now: the allowance can go'
    run "$unpacked" uninstall.cmd 0
    nothing_left
done

# Start from the unpacked folder. Wine, unlike Windows, keeps a running script open, and so its folder.
run "$unpacked" install.cmd 0
run "$home/Halvora/Publish to Flickr" uninstall.cmd 0
[ -z "$(find "$home/Halvora" -type f)" ] || fail "left: $(find "$home/Halvora")"
rm -rf "$home/Halvora"
nothing_left

# What can't be done ends with a message and leaves nothing behind.
spoilt="$work/spoilt"
for fault in missing damaged; do
    rm -rf "$spoilt"
    cp -r "$unpacked" "$spoilt"
    plugin=$spoilt/Halvora.Publishing.Plugin.Flickr.dll
    if [ $fault = missing ]; then rm "$plugin"; else truncate -s 40000 "$plugin"; fi
    run "$spoilt" install.cmd 1
    says 'NOT installed'
    if [ $fault = missing ]; then says 'Unpack the whole zip'; else says "can't register Halvora.Publishing.Plugin.Flickr.dll"; fi
    nothing_left
done
local='Q:\nowhere'
run "$unpacked" install.cmd 1
says "can't be written"
nothing_left
echo 'The zip installs and leaves nothing behind.'
