#!/usr/bin/env bash
# example-host.sh PROGRAM: the outputs of the example host and of example-cards beside it are what the README shows,
# and the host fails as it promises.
set -euo pipefail
program=$(realpath "$1")
cd "$(dirname "$0")/../.."

# The number that opens the encoder is new at each call.
mask() { sed -E 's/\|[0-9]+\|Mifare/|NUMBER|Mifare/'; }

# The fenced block of the README that begins with the information text.
shown=$(awk '/^```/ { inside = 0 } inside { print } /^```text$/ { inside = 1 }' README.md | sed -n '/^Information/,/^State .*closed/p')
diff <(mask <<<"$shown") <("$program" | mask)

diff <(grep '^Card [0-9]:' README.md) <("$(dirname "$program")/example-cards")

"$program" 'Device=com1,card=4k,uid=01020304' | grep -qx 'Serial           01020304'

# A device that the reader refuses: the record, and status 1.
status=0
output=$("$program" 'Device=com1,card=2k') || status=$?
[ "$status" -eq 1 ]
grep -qx '  Description    Cannot open encoder' <<<"$output"
grep -qx '  RdrCommand     OpenComm' <<<"$output"
