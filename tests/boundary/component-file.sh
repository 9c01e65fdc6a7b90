#!/usr/bin/env bash
# component-file.sh FILE PROGRAM: the component's file exports the four functions, undecorated, and nothing else,
# and is small; it and the program acg import from the system alone.
set -euxo pipefail

exports=$(i686-w64-mingw32-objdump -p "$1" |
    sed -n '/^\[Ordinal\/Name Pointer\] Table/,$s/^\t\[.* //p' | sort | xargs)
foreign=$(i686-w64-mingw32-objdump -p "$@" | sed -n 's/^\tDLL Name: //p' |
    grep -vixE '(advapi32|gdi32|kernel32|ole32|oleaut32|shell32|user32|msvcrt)\.dll' || true)
[ "$exports" = 'DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer' ]
[ -z "$foreign" ]
[ "$(stat -c %s "$1")" -le $((256 * 1024)) ]
