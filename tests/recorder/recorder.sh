#!/usr/bin/env bash
# recorder.sh FOLDER: the example host of that build, recorded and replayed, prints the same, also when it waits for
# its card, when the log can't be written, and when it is damaged after the session; no key of it is in the log, which
# is its owner's alone; and without a next library the host fails, with a word on why.
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
[ "$(stat -c %a "$log")" = 600 ]

# full FILE FOLDER...: the host shows the same if its log can't be written, and one line says so.
full() {
    diff - <(ACG_READER_LOG=$1 "$folder/example-host" 2>"$folder/error" | mask) <<<"$shown"
    diff - "$folder/error" <<<"ACGReader330: the log can't be written: $1: $2"
}
full /dev/full 'No space left on device'
full "$folder" 'Is a directory'

# A card that comes after 4000 commands.
export ACG_READER_LOG=$folder/wait.log
diff <(tail -n +2 <<<"$shown") <("$folder/example-host" Device=com1,card=none,place=4000/1D2C3B4A | tail -n +2)
printf '0.1 Close' >>"$ACG_READER_LOG" # a session that was cut off
"$folder/example-host" >/dev/null
[ "$(grep -c ' repeated: calls 3, times 1332 ' "$ACG_READER_LOG")" -eq 1 ]
end=$(grep -n '^0.1 Close$' "$ACG_READER_LOG" | cut -d: -f1)
diff - <("$folder/simulated/example-host" "Device=x,replay=$ACG_READER_LOG" 2>"$folder/error" | mask) <<<"$shown"
grep -q ": line $end isn't one of a recorder's log; " "$folder/error"

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

(export LLVM_PROFILE_FILE=/dev/null; ulimit -f 1 && full "$folder/short.log" 'File too large')
[ "$(tail -c 1 "$folder/short.log")" = '' ]
