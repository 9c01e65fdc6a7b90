#!/usr/bin/env bash
# component-file.sh FILE PROGRAM: the component's file exports the four functions, undecorated, and nothing else,
# and is small; it and the program acg import from the system alone; the files beside them say what they are.
set -euxo pipefail

exports=$(i686-w64-mingw32-objdump -p "$1" |
    sed -n '/^\[Ordinal\/Name Pointer\] Table/,$s/^\t\[.* //p' | sort | xargs)
foreign() { # FILE [DLL]: what it imports but the system's and that one
    i686-w64-mingw32-objdump -p "$1" | sed -n 's/^\tDLL Name: //p' |
        grep -vixE "(advapi32|gdi32|kernel32|ole32|oleaut32|shell32|user32|msvcrt${2:-})\.dll" || true
}
[ "$exports" = 'DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer' ]
[ -z "$(foreign "$1")$(foreign "$2" '|version')" ]
[ "$(stat -c %s "$1")" -lt 320000 ]
for description in "$1|Tarvello encoding component: ACG Multi-ISO" "$2|Command-line program for contactless cards" \
    "${2%/*}/ACGReader330.dll|Simulated reader library" "${2%/*}/recorder/ACGReader330.dll|Session recorder"; do
    strings -el "${description%|*}" | grep -A 1 -x FileDescription | grep -qxF "${description#*|}"
done
