#!/usr/bin/env bash
# unpacked.sh ZIP, for the tests of the package to source: the package lies in C:\ACG of a Wine of its own, as
# its page says, and this shell stands there. As on 64-bit Windows there is a SysWOW64.
repository=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
. "$repository/scripts/common.sh"
zip=$(realpath "$1")
start_wine >/dev/null
ln -s system32 "$WINEPREFIX/drive_c/windows/syswow64"
unzip -q "$zip" -d "$WINEPREFIX/drive_c/ACG"
cd "$WINEPREFIX/drive_c/ACG"
