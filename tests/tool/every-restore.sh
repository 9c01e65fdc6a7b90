#!/usr/bin/env bash
# every-restore.sh PROGRAM: a restore that ends at whichever command of the reader says truly whether it changed the
# card, and if it is run again, the card is as the dump has it.
set -euo pipefail
program=$(realpath "$1")
folder=$(mktemp -d) && cd "$folder"
trap 'rm -r "$folder"' EXIT
acg() { "$program" "$@" --reader "Device=com1,image=$image,save=$image$option" >said 2>&1; }
tried=0
for row in '1k 1 4' '4k 38 224'; do # the size, a sector, and its first block
    read -r size sector block <<<"$row"
    rm -f dump changed && option=,card=$size image=dump
    acg write "$block" 000102030405060708090A0B0C0D0E0F --key FFFFFFFFFFFF
    acg protect "$sector" --key FFFFFFFFFFFF --new-a A0A1A2A3A4A5 --new-b B0B1B2B3B4B5 --levels 13,13,13,12 --keys 2 --yes
    image=changed # two blocks differ, one of which no key may write before the dump's trailer
    acg write "$((block + 10 * (sector / 38) + 2))" FF0102030405060708090A0B0C0D0E0F --key FFFFFFFFFFFF
    acg protect "$sector" --key FFFFFFFFFFFF --new-a C0C1C2C3C4C5 --new-b D0D1D2D3D4D5 --levels 1,3,3,3 --keys 1 --yes
    image=card
    for fault in '' ,remove={3..30} ',fault=login/'{1..12}'/'{X,} ',fault=write block/'{1,2,3}'/'{,N,F} ,fault=select/{2..16}/C; do
        cp changed card
        option=$fault && acg restore dump "$sector" --trailers --key C0C1C2C3C4C5 --yes --json || true
        case $(grep -oE '"written":"[a-z]+"' said | head -1) in # that of the whole comes first
            *no\") cmp card changed ;;
            *yes*) cmp card dump ;;
        esac
        option='' && acg restore dump "$sector" --trailers --key C0C1C2C3C4C5 --yes --json
        cmp card dump || { echo "$fault: $(cat said)" && exit 1; }
        tried=$((tried + 1))
    done
done
echo "$tried restores completed"
