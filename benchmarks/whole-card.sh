#!/usr/bin/env bash
# whole-card.sh FOLDER: prints how long acg takes for a 4K card, in a build's folder, beside what its commands take on the
# line and the card: 10 bits for each byte of the command, its data and the reply, and the card's own time. That is what
# the simulated reader waits (simulator/README.md, "Time"). The commands are those of the recorder's log.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
mkdir "$folder/vendor"
cp "$1/acg" "$1/recorder/libACGReader330.so" "$folder"
cp "$1/libACGReader330.so" "$folder/vendor"
export ACG_READER_LOG=$folder/log
unset ACG_PARAMETERS ACG_KEY

limit() { # seconds at so many baud
    awk -v baud="$1" -F '"' '
        / SendCommandGetData / {
            reply = $6
            gsub(/\\x[0-9A-Fa-f][0-9A-Fa-f]/, "", reply) # the NUL after a letter is not on the line
            bytes += length($2 $4 reply)
            card += $2 == "select" ? 3 : $2 == "login" || $2 ~ / v?block$/ ? 2 : 0
        }
        END { printf "%.3f", bytes * 10 / baud + card / 1000 }' "$ACG_READER_LOG"
}

printf '%-10s%8s%10s%10s%8s\n' command baud limit took ratio
"$folder/acg" dump "$folder/card.bin" --reader Device=com1,card=4k >"$folder/output"
for baud in 9600 115200; do
    for use in "dump $folder/again.bin --force" card "compare $folder/card.bin"; do
        rm -f "$ACG_READER_LOG"
        from=$(date +%s.%N)
        # shellcheck disable=SC2086 # words
        "$folder/acg" $use --reader "Device=com1,card=4k,baud=$baud;Baud rate=$baud" >"$folder/output"
        took=$(date +%s.%N)
        awk -v name="${use%% *}" -v baud="$baud" -v limit="$(limit "$baud")" -v took="$took" -v from="$from" 'BEGIN {
            printf "%-10s%8d%8.2f s%8.2f s%8.2f\n", name, baud, limit, took - from, (took - from) / limit }'
    done
done
