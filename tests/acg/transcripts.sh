#!/usr/bin/env bash
# transcripts.sh PROGRAM FILE...: each command line "$ ... acg ..." of a file prints what stands below it, both streams
# together, and ends with status 0 or the one that the last line says. In a page, only the blocks that begin with
# such a line count. They run in a new folder, where "tests" is this one's parent;
# the program's own is shown as /opt/acg.
set -euo pipefail
home=$(dirname "$(realpath "$1")")
PATH=$home:$PATH
shift
cd "$(dirname "$0")/../.."
unset ACG_PARAMETERS ACG_KEY ACG_NEW_A ACG_NEW_B
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
ln -s "$PWD/tests" "$folder"
for file; do
    shown=$(awk '/^```/ { inside = 0 } /^\$ (.* )?acg / { inside = 1 } inside' "$file")
    [ -n "$shown" ]
    diff <(echo "$shown") <(cd "$folder" && grep -E '^\$ (.* )?acg ' <<<"$shown" | while read -r line; do
        echo "$line"
        status=0
        eval "${line#$ }" </dev/null 2>&1 || status=$?
        [ "$status" -eq 0 ] || echo "(exit status $status)"
    done | sed "s|$home|/opt/acg|g")
done
