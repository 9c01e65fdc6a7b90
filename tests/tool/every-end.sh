#!/usr/bin/env bash
# every-end.sh PROGRAM: whatever happens at whichever command of the reader, what acg says of a write is true of the
# card: "yes" if its image holds it all, "no" if the image is as it was. Of few ends it isn't known.
set -euo pipefail
program=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
cd "$folder"
"$program" info --reader Device=com1,image=fresh,save=fresh >info

# try OPTION COMMAND...: one run on a new card; "as-written" is what the run without an option leaves.
try() {
    local option=$1 said
    shift
    cp fresh card
    "$program" "$@" --key FFFFFFFFFFFF --json --reader "Device=com1,image=card,save=card$option" >end 2>&1 || true
    said=$(grep -oE '"written":"(yes|no|unknown)"' end | head -1)
    [ -n "$option" ] || cp card as-written
    case $said in
        *yes*) cmp card as-written ;;
        *no\") cmp card fresh ;;
        *unknown*) unknown=$((unknown + 1)) ;;
        *) false ;;
    esac || { echo "$option $*: $(cat end)" && exit 1; }
    tried=$((tried + 1))
}

tried=0 unknown=0
for row in 'write 4 000102030405060708090A0B0C0D0E0F|write block' 'value 5 1000|write vblock' \
    'protect 1 --new-a A0A1A2A3A4A5 --new-b B0B1B2B3B4B5 --levels 13,13,13,12 --keys 2 --yes|write block'; do
    read -ra command <<<"${row%|*}"
    try '' "${command[@]}"
    for at in {3..28}; do # an earlier one makes the opening wait for 5 seconds
        try ",remove=$at" "${command[@]}"
        try ",remove=$at,return=$((at + 1))" "${command[@]}"
    done
    for fault in login select 'read block' "${row#*|}"; do
        for at in 1 2 3; do
            for letter in '' N F; do
                try ",fault=$fault/$at/$letter" "${command[@]}"
            done
        done
    done
done
echo "$tried ends, $unknown of them said to be unknown"
[ "$unknown" -lt $((tried / 2)) ]
