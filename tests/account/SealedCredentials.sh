#!/usr/bin/env bash
# The finished module must not show the application's key and secret to who looks at its bytes, be it as text of
# one byte a character or of two.
#     SealedCredentials.sh MODULE KEY SECRET
set -u
failed=0
# Runs of 8 characters, since shorter ones turn up by chance.
parts() { fold -w 8 <<<"$1"; }
finds() { tr -d '\0' <"$1" | grep -aqF -- "$2"; }
for value in "$2" "$3"; do
    for part in $(parts "$value"); do
        for code in ASCII UTF-16LE; do
            finds <(printf 'x%sx' "$value" | iconv -f ASCII -t "$code") "$part" || { echo 'the search is at fault'; failed=1; }
        done
        finds "$1" "$part" && { echo "$1 shows a part of the key or the secret"; failed=1; }
    done
done
[ -s "$1" ] || { echo "no module at $1"; failed=1; }
exit $failed
