#!/usr/bin/env bash
# reference-pages.sh ZIP: both reference pages have every member of the type library with its arguments, every value
# of its enums, and every failure; they have the same programs; and their examples, one after the other, print what
# they say.
set -euo pipefail
. "$(dirname "$0")/unpacked.sh"

# entry REGEX NAME...: each has a heading or a row in both pages.
entry() {
    for name in "${@:2}"; do
        [ "$(grep -lE "${1//NAME/$name}" reference-en.html reference-fr.html | wc -l)" -eq 2 ] || { echo "$name?"; exit 1; }
    done
}
idl=$(tr -s '\n ' ' ' <"$repository/acg/boundary/ACG_MultiISO_TV.idl")
mapfile -t members < <(grep -oP 'HRESULT \K\w+' <<<"$idl" | sort -u)
mapfile -t values < <(grep -oP 'sc\w+(?= = \d)' <<<"$idl")
mapfile -t calls < <(grep -oP 'HRESULT \w+\(\[in.*?\);' <<<"$idl" | grep -v ' Value)' |
    perl -pe 's/HRESULT |\[out, retval.*?(?=\))|\[[^]]*\] [\w ]+\*? (?=\w)|;//g; s/, \)/\\)/; s/\(/\\(/')
mapfile -t failures < <(grep -oP 'Failure \w+\{\K-\d+' "$repository/acg/encoder/Failures.h"; printf '%s\n' 53 453)
[ "${#members[@]}" -ge 26 ] && [ "${#values[@]}" -ge 31 ] && [ "${#calls[@]}" -ge 10 ] && [ "${#failures[@]}" -ge 16 ]
entry '<h3 id="NAME">|<td><code>NAME</code></td>' "${members[@]}"
entry '<td><code>NAME</code></td>' "${values[@]}"
entry '^<p><code>NAME</code>' "${calls[@]}"
entry 'id="failure-?NAME">NAME [A-Z]' "${failures[@]}"

programs() { sed -n "/^\`\`\`${2:-}/,/^\`\`\`/p" "$repository/package/pages/reference-$1.md"; }
diff <(programs en) <(programs fr)
# A dialog waits for a person, and Wine has no Sleep.
examples() { programs en "$1" | grep -vE '^```|Configure|Sleep'; }
on_wine regsvr32 /s ACG_MultiISO_TV.dll
cp simulator/ACGReader330.dll .
examples vb | sed 's/$/\r/' >examples.vbs
diff <(examples vb | sed -n "s/.* ' //p") <(on_wine cscript //nologo examples.vbs)
examples js >examples.js
diff <(examples js | sed -n 's|.* // ||p') <(on_wine cscript //nologo examples.js)
