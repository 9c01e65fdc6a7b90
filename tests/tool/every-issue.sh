#!/usr/bin/env bash
# every-issue.sh PROGRAM [CARDS [KILLS]]: four stacks of so many cards, written from tables by runs of which so many are
# killed at random moments: at the end each card is as the journal's row says, and no card is of two rows.
set -euo pipefail
program=$(realpath "$1") cards=${2:-5} kills=${3:-6}
folder=$(mktemp -d) && cd "$folder"
trap 'rm -r "$folder"' EXIT
stack() { # its number
    mkdir "$1" && cd "$1" && mkdir box
    echo "text 4,block 6,block 40,key a 1,key b 1,key a 10,key b 10" >cards.csv
    for ((row = 2; row < cards + 2; row++)); do
        printf 'Card %04d,%032X,%032x,A0A1A2A3%04X,B0B1B2B3%04X,C0C1C2C3%04X,D0D1D2D3%04X\n' $row{,,,,,,} >>cards.csv
    done
    for ((killed = 0, status = 1; status != 0;)); do
        "$program" issue cards.csv --yes --set 'levels 1=r/rw,r/rw,-/rw,-/keys+bits' --set 'levels 10=13,13,13,12' \
            --reader "Device=com1,card=none,baud=57600,cards=box,feed=$cards/A1000001" >>said 2>&1 &
        if ((killed < kills)); then
            sleep "$(printf '%d.%03d' $((RANDOM % (1 + 2 * cards / kills))) $((RANDOM % 1000)))"
            kill -9 $! && killed=$((killed + 1)) || true
        fi
        status=0 && wait $! || status=$?
        ((status % 128 == 9 || status == 0)) || { cat said && exit 1; }
    done 2>/dev/null
    for ((row = 2; row < cards + 2; row++)); do
        serial=$(awk -F'\t' -v row=$row '$2 == row && $4 == "done" { print $3 }' cards.csv.journal)
        od -An -v -tx1 -w16 "box/$serial.bin" | tr -d ' ' | sed -n '5p;7p;8p;41p;44p' >image
        printf 'Card %04d\0\0\0\0\0\0\0' $row | od -An -tx1 | tr -d ' ' >expected
        printf '%032x\na0a1a2a3%04x3c33cc69b0b1b2b3%04x\n%032x\nc0c1c2c3%04x78778869d0d1d2d3%04x\n' $row{,,,,,} >>expected
        cmp image expected || { paste image expected && exit 1; }
    done
    [ "$(awk '$4 == "begun" { print $2, $3 }' cards.csv.journal | sort -u | wc -l)" = "$cards" ]
    echo "$cards cards, $killed runs killed, $(grep -c begun said) of them while a card was written"
}
for number in 1 2 3 4; do (stack $number) & jobs+=($!); done
for job in "${jobs[@]}"; do wait "$job"; done
