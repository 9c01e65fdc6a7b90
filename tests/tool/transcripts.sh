#!/usr/bin/env bash
# transcripts.sh PROGRAM FILE...: each command line "$ ... acg ..." of a file prints what stands below it, both streams
# together, and ends with status 0 or the one that the last line says. In a page, only the blocks that begin with
# such a line count. They run in a new folder, where "tests" is this one's parent; the program's own is shown as
# /opt/acg. A PROGRAM that ends in .exe runs in a Wine of its own, but for the commands that name what only the native
# system has.
set -euo pipefail
program=$(realpath "$1")
home=$(dirname "$program")
shift
cd "$(dirname "$0")/../.."
unset ACG_PARAMETERS ACG_KEY ACG_NEW_A ACG_NEW_B
native='^$'
if [[ $program = *.exe ]]; then
    . scripts/common.sh
    start_wine >/dev/null
    folder=$wine_folder/here
    mkdir "$folder"
    native='/dev/|^\\$ timeout |xFF|umask|chmod|ulimit|ln -s'
    acg() {
        local argument arguments=()
        for argument; do
            if [[ $argument = /dev/fd/* ]]; then # a file that Wine can't open
                cat "$argument" >"$wine_folder/fd"
                argument=$wine_folder/fd
            fi
            arguments+=("$argument")
        done
        on_wine "$program" "${arguments[@]}"
    }
else
    PATH=$home:$PATH
    folder=$(mktemp -d)
    trap 'rm -r "$folder"' EXIT
fi
ln -s "$PWD/tests" "$folder"
cp examples/members.csv "$folder"
failed=0
for file; do
    shown=$(awk -v native="$native" '
        /^```/ { inside = 0 }
        /^\$ (.* )?acg / { inside = $0 !~ native }
        inside' "$file" | sed -E ':a; /^\$ .*\\$/{N; s/ *\\\n */ /; ba}') # a command may have several lines
    [ -n "$shown" ]
    diff <(echo "$shown") <(cd "$folder" && grep -E '^\$ (.* )?acg ' <<<"$shown" | while read -r line; do
        echo "$line"
        status=0
        eval "${line#$ }" </dev/null 2>&1 || status=$?
        [ "$status" -eq 0 ] || echo "(exit status $status)"
    done | sed -E "s#(Z:)?${home//\//[/\\\\]+}#/opt/acg#g; s#/opt/acg[\\\\]+(ACGReader330).dll#/opt/acg/lib\1.so#g") || failed=1
done
exit "$failed"
