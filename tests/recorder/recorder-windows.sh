#!/usr/bin/env bash
# recorder-windows.sh FOLDER: of the build for Windows, the example host, recorded and replayed, prints the same, with
# the next library and the log in folders that aren't plain ASCII; without a next library it fails, with a word on why.
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")"
. ../../scripts/common.sh
start_wine >/dev/null
folder=$WINEPREFIX/drive_c/é
mkdir -p "$folder/vendor" "$folder/simulated"
cp "$build/example-host.exe" "$build/recorder/ACGReader330.dll" "$folder"
cp "$build/ACGReader330.dll" "$folder/vendor"
cp "$build/example-host.exe" "$build/ACGReader330.dll" "$folder/simulated"
mask() { sed -E 's/\|[0-9]+\|Mifare/|NUMBER|Mifare/'; } # new at each call

shown=$(on_wine 'C:\é\example-host.exe' | mask)
[ "$(sed -n '1s/.*, next library: //p' "$folder/ACGReader330.log" | tr -d '\r')" = 'C:\é\vendor\ACGReader330.dll' ]
[ "$(grep -c '"login"' "$folder/ACGReader330.log")" -eq 16 ]
diff - <(on_wine 'C:\é\simulated\example-host.exe' 'Device=x,replay=C:\é\ACGReader330.log' | mask) <<<"$shown"
{ ACG_READER_LIBRARY='C:\nowhere.dll' on_wine 'C:\é\example-host.exe' || true; } |
    grep -qxF "ACGReader330: the next library can't be used: C:\nowhere.dll: there is no such file, system error 126"
