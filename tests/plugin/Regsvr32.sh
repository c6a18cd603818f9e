#!/usr/bin/env bash
# The system's own installer of modules, on the product.
#     Regsvr32.sh RUN-WINE DLL      from a build folder, whose prefix is used
set -u
run=$1
module=$(tr / '\\' <<<"Z:$2")
class='Software\Classes\CLSID\{46519402-3380-4D48-BC76-63FFAA27165C}\InprocServer32'
failed=0
has() { "$run" reg query "$1\\$class" 2>/dev/null | tr -d '\0\r' | grep -qF 'Both'; }
expect() { # WORDS COMMAND...
    local words=$1
    shift
    "$@" || { echo "$words"; failed=1; }
}
lacks() { ! has "$1"; }

# Wine sometimes can't start a program on a busy machine, and says so; nothing of ours has run then.
regsvr32() {
    local said try
    for try in 1 2 3; do
        said=$("$run" regsvr32 "$@" 2>&1) && return
        grep -q 'could not be started' <<<"$said" || break
    done
    echo "$said (try $try)"
    return 1
}

expect 'regsvr32 /s fails' regsvr32 /s "$module"
expect 'the class is not registered' has HKLM
expect 'regsvr32 /s /u fails' regsvr32 /s /u "$module"
expect 'the class is still registered' lacks HKLM
expect 'regsvr32 /i:user fails' regsvr32 /n /i:user /s "$module"
expect 'the class is not registered for the user' has HKCU
expect 'the class is registered for the machine' lacks HKLM
expect 'regsvr32 /u /i:user fails' regsvr32 /u /n /i:user /s "$module"
expect 'the class is still registered for the user' lacks HKCU
exit $failed
