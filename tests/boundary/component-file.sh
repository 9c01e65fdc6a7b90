#!/usr/bin/env bash
# component-file.sh FILE: the component's file exports the four functions, undecorated, and nothing else,
# imports from the system alone, and is small.
set -euo pipefail

file=$1
most_bytes=$((256 * 1024))
system='ADVAPI32 GDI32 KERNEL32 OLE32 OLEAUT32 USER32 MSVCRT'

contents=$(i686-w64-mingw32-objdump -p "$file")
exports=$(sed -n '/^\[Ordinal\/Name Pointer\] Table/,$p' <<<"$contents" |
    sed -nE 's/^\t\[ *[0-9]+\] (.*)/\1/p' | sort | xargs)
imports=$(sed -nE 's/^\tDLL Name: (.*)\.dll$/\1/Ip' <<<"$contents" | tr '[:lower:]' '[:upper:]' | sort -u)
foreign=$(grep -vxFf <(tr ' ' '\n' <<<"$system") <<<"$imports" | xargs || true)
bytes=$(stat -c %s "$file")

printf '%s bytes; exports: %s; imports: %s\n' "$bytes" "$exports" "$(xargs <<<"$imports")"
[ "$exports" = 'DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer' ]
[ -n "$imports" ]
[ -z "$foreign" ]
[ "$bytes" -le "$most_bytes" ]
