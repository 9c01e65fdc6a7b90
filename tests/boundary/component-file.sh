#!/usr/bin/env bash
# component-file.sh FILE: the component's file exports the four functions, undecorated, and nothing else,
# imports from the system alone, and is small.
set -euo pipefail

contents=$(i686-w64-mingw32-objdump -p "$1")
exports=$(sed -n '/^\[Ordinal\/Name Pointer\] Table/,$s/^\t\[ *[0-9]*\] //p' <<<"$contents" | sort | xargs)
foreign=$(sed -n 's/^\tDLL Name: //p' <<<"$contents" |
    grep -vixE '(advapi32|gdi32|kernel32|ole32|oleaut32|user32|msvcrt)\.dll' || true)
bytes=$(stat -c %s "$1")
printf '%s bytes; exports: %s; foreign imports: %s\n' "$bytes" "$exports" "$foreign"
[ "$exports" = 'DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer' ]
[ -z "$foreign" ]
[ "$bytes" -le $((256 * 1024)) ]
