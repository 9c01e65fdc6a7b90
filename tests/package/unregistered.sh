#!/usr/bin/env bash
# unregistered.sh ZIP: with the install page's manifest a host uses the component in a registry that knows nothing of
# it: a script, and the tests of the component, by slot, by name, and from another apartment. The registry stays so.
set -euo pipefail
. "$(dirname "$0")/unpacked.sh" "$1"

known() { on_wine reg query 'HKLM\Software\Classes\CLSID\{7F51482E-7387-41BF-9478-E44FB07C38B7}' >/dev/null; }
cp simulator/ACGReader330.dll "$WINEPREFIX/drive_c/windows/system32/cscript.exe" .
cp "$repository/build/windows/acg-boundary-tests.exe" .
script() { on_wine 'C:\ACG\cscript.exe' //nologo script-host.vbs; }
script | grep -q '^Block after' && exit 1
tr -d '\r' <install-en.html | sed -n '/<pre id="manifest">/,/<\/pre>/{s/<[^>]*>//g; s/&lt;/</g; s/&gt;/>/g; s/&quot;/"/g; p}' |
    tee acg-boundary-tests.exe.manifest >cscript.exe.manifest
script | grep -qx 'Block after      54617276656C6C6F2073617973206869'
on_wine 'C:\ACG\acg-boundary-tests.exe' --gtest_filter=-RegistrationTest.* unregistered | grep -q '^\[  PASSED  \] [1-9]'
known && exit 1 || true
