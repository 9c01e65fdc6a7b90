#!/usr/bin/env bash
# unpacked.sh ZIP [win64], for the tests of the package to source: the package lies in C:\ACG of a Wine of its
# own, as its page says, and this shell stands there. There always is a SysWOW64, as on 64-bit Windows.
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"
zip=$(realpath "$1")
start_wine "${2:-win32}" >/dev/null
[ "$WINEARCH" = win64 ] || ln -s system32 "$WINEPREFIX/drive_c/windows/syswow64"
unzip -q "$zip" -d "$WINEPREFIX/drive_c/ACG"
cd "$WINEPREFIX/drive_c/ACG"
