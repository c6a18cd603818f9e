#!/usr/bin/env bash
# A module's file: only the system's libraries, five exports by ordinal, and the protections that Windows
# gives a module that asks for them.
#     InspectModule.sh DLL
set -u
failed=0
complain() { echo "$1"; failed=1; }
headers=$(x86_64-w64-mingw32-objdump -p "$1") || exit 1
sections=$(x86_64-w64-mingw32-objdump -h "$1") || exit 1

system=' advapi32 bcrypt comctl32 dwmapi gdi32 kernel32 msimg32 msvcrt ole32 oleaut32 shell32 shlwapi user32 version winhttp windowscodecs '
libraries=$(sed -n 's/^\tDLL Name: \(.*\)\.[dD][lL][lL]$/\1/p' <<<"$headers" | tr '[:upper:]' '[:lower:]')
[ -n "$libraries" ] || complain 'no import table found'
for library in $libraries; do
    [[ $system == *" $library "* ]] || complain "imports $library, which is no library of the system"
done

for protection in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
    grep -q "^[[:space:]]*$protection" <<<"$headers" || complain "not $protection"
done
grep -q 'Base Relocation Directory' <<<"$headers" || complain 'no relocations: it would lie at one address'

exports=$(sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/s/^[[:space:]]*\[ *\([0-9]*\)\].* \(Dll[A-Za-z]*\)$/\1 \2/p' <<<"$headers")
[ "$exports" = $'0 DllCanUnloadNow\n1 DllGetClassObject\n2 DllInstall\n3 DllRegisterServer\n4 DllUnregisterServer' ] ||
    complain "other exports than promised: $exports"
grep -q '^Ordinal Base[[:space:]]*1$' <<<"$headers" || complain 'ordinals do not begin with 1'

# Each section's flags stand in the line below it.
writable=$(awk '/^ *[0-9]+ \./ {name = $2; getline; if (/CODE/ && !/READONLY/) print name}' <<<"$sections")
[ -z "$writable" ] || complain "code that can be written: $writable"
x86_64-w64-mingw32-nm "$1" 2>/dev/null | grep -q '__stack_chk_fail' || complain 'no stack protector'
exit $failed
