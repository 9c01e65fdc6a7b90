#!/usr/bin/env bash
# install-page.sh ZIP: the commands of the install page, carried out one after the other, lead where it says.
# The scripts shown in the README work on the way, and nothing is left behind in the end.
set -euo pipefail
. "$(dirname "$0")/unpacked.sh" "$1" win64

# commands STEP: what the page has its reader type.
commands() {
    sed 's|<pre[^>]*><code>|\n<pre>\n|; s|</code></pre>|\n</pre>\n|; s/&quot;/"/g' install-en.html | awk -v step="$1" '
        /<pre>/ { block++; inside = 1; next }
        /<\/pre>/ { inside = 0 }
        inside && step == block'
}
# A 64-bit command prompt; Wine starts 32-bit programs of a name first.
on_64() { on_wine cmd /c 'C:\windows\sysnative\cmd.exe' /c "$@"; }
# carry_out STEP
carry_out() {
    { echo '@cd /d C:\ACG' && commands "$1" | sed 's/^/@/'; } | sed 's/$/\r/' >step.bat
    on_64 'C:\ACG\step.bat'
}
# What the registry knows of classes, type libraries and interfaces, in both views.
classes() {
    on_64 reg export 'HKLM\Software\Classes' 'C:\classes.reg' /y >/dev/null && cat ../classes.reg
}
# readme_below TEXT: the rest of the block, below the line that begins so.
readme_below() {
    awk -v from="$1" '/^```$/ { inside = 0 } inside; index($0, from) == 1 { inside = 1 }' "$repository/README.md"
}
# The number that opens the encoder is new at each call.
mask() { sed -E 's/\|[0-9]+\|Mifare/|NUMBER|Mifare/'; }

echo >empty.js
on_wine cscript //nologo empty.js
on_64 cscript //nologo empty.js # Wine's script host registers something of its own when it first runs
classes >before.reg
carry_out 1
classes | cmp -s before.reg - && exit 1 # so the comparison sees a registration
carry_out 2
transcript=$(readme_below 'C:')
diff <(printf '%s\n' "$transcript" "$transcript" | mask) <(carry_out 3 | mask)
diff <(readme_below '$ acg trailer ') <(carry_out 4)
[[ $(carry_out 5 | cut -c 1 | tr -d '\n') = oooon[no]ooooo ]] # n: not set up; there may be a manifest

status=0
output=$(on_wine cscript //nologo script-host.vbs Device=com1,readers=) || status=$?
[ "$status" -eq 1 ]
grep -qx '  Description    No encoder found' <<<"$output"
readme_below '```vb' | sed 's/$/\r/' >first.vbs
[ "$(on_wine cscript //nologo first.vbs)" = 'Block 4: 00000000000000000000000000000000' ]

classes >registered.reg
carry_out 6
classes | cmp -s registered.reg - && exit 1
diff <(printf '%s\n' "$transcript" | mask) <(on_64 cscript //nologo script-host.vbs | mask)
x86_64-w64-mingw32-g++-win32 -static -I"$repository/build/windows/component/boundary/generated" \
    "$repository/tests/package/host64.cpp" -o host64.exe -lole32 -loleaut32
[ "$(on_64 host64.exe)" = 00000000000000000000000000000000 ]
carry_out 7
classes | cmp registered.reg -

carry_out 8
classes | cmp before.reg -
