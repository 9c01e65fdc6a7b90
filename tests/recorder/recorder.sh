#!/usr/bin/env bash
# recorder.sh FOLDER: the example host of that build, recorded and replayed, prints the same; no key of it is in
# the log; and without a next library the host fails, with a word on why.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/vendor" "$folder/simulated"
cp "$1/example-host" "$1/recorder/libACGReader330.so" "$folder"
cp "$1/libACGReader330.so" "$folder/vendor"
cp "$1/example-host" "$1/libACGReader330.so" "$folder/simulated"
log=$folder/ACGReader330.log
mask() { sed -E 's/\|[0-9]+\|Mifare/|NUMBER|Mifare/'; } # new at each call

shown=$("$folder/example-host" | mask)
[ "$(sed -n '1s/.*, next library: //p' "$log")" = "$folder/vendor/libACGReader330.so" ]
[ "$(grep -c '"login"' "$log")" -eq 16 ]
if grep -E 'FFFFFF|A0A1A2|B0B1B2|(AA|BB)0000' "$log"; then exit 1; fi
diff - <("$folder/simulated/example-host" "Device=x,replay=$log" | mask) <<<"$shown"
diff - <("$folder/simulated/example-host" "Device=x,replay=$(dirname "$0")/session.log" | mask) <<<"$shown"
diff - <(ACG_READER_LOG=/dev/full "$folder/example-host" 2>&1 | mask) <<<"$shown"

# fails EXPECTED COMMAND...: the host can't be opened, and the standard error says why, in one line.
fails() {
    local status=0
    "${@:2}" >/dev/null 2>"$folder/error" || status=$?
    [ "$status" -eq 1 ]
    diff - "$folder/error" <<<"ACGReader330: $1"
}
fails "the next library can't be used: /nowhere: there is no such file, system error 2" \
    env ACG_READER_LIBRARY=/nowhere "$folder/example-host"
fails "the next library can't be used: $folder/libACGReader330.so: it is the recorder itself" \
    env ACG_READER_LIBRARY="$folder/libACGReader330.so" "$folder/example-host"
fails 'replay: expected OpenComm "com1" 1 9600 0, not OpenComm "x,replay='"$log"'" 1 19200 0' \
    "$folder/simulated/example-host" "Device=x,replay=$log;Baud rate=19200"
