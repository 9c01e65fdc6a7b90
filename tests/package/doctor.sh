#!/usr/bin/env bash
# doctor.sh ZIP: the doctor names each fault of an installation, and its remedy.
set -euo pipefail
. "$(dirname "$0")/unpacked.sh"

register() { on_wine regsvr32 /s ACG_MultiISO_TV.dll; }

# finds LINES WHAT REMEDY [PARAMETERS]: LINES has the first character of each line, of ok, FAILED or -. The
# simulated reader has lines of its own among them.
finds() {
    local status=0 output
    output=$(on_wine cscript //nologo "${script:-doctor.vbs}" "${@:4}") || status=$?
    if [ "$status" -ne 1 ] || [ "$(grep -v '^ \|^ACGR' <<<"$output" | cut -c 1 | tr -d '\n')" != "$1" ] ||
        ! grep -A 1 "^FAILED  $2" <<<"$output" | grep -q "^        remedy: $3"; then
        printf 'status %s, not found: %s, %s, %s, but:\n%s\n' "$status" "$1" "$2" "$3" "$output"
        exit 1
    fi
}

finds oF--------- 'The class is registered' 'register .* by the 32-bit regsvr32'
{ on_wine cscript //nologo doctor.vbs /fr || true; } | LC_ALL=C grep -q '^.CHEC   La classe est enregistr.e$'
register
# Wine runs 32-bit programs only here: so the doctor's copy says otherwise.
sed 's/^processor = .*/processor = "AMD64"\r/' doctor.vbs >other.vbs
script=other.vbs finds F---------- 'The script host is 32-bit' 'run this script by C:.*SysWOW64.cscript.exe'
finds oooooF----- 'The reader library is found' "put the vendor's ACGReader330.dll beside the component"

cp simulator/ACGReader330.dll .
mv ACG_MultiISO_TV.dll away.dll
finds ooF-------- "The component's file is there" 'unpack ACG_MultiISO_TV.dll'
head -c 10000 away.dll >ACG_MultiISO_TV.dll
finds ooooF------ 'The component loads' 'the file is damaged'
LC_ALL=C sed 's/MSFT/TFSM/' away.dll >ACG_MultiISO_TV.dll # where a type library begins
finds ooooF------ 'The component loads, and its type library' 'the file is damaged'
mv away.dll ACG_MultiISO_TV.dll
key='HKLM\Software\Classes\TypeLib\{F7AA3FEF-4DC8-45C9-BE9F-1C10F86CD5FF}'
on_wine reg add "$key\\2.1\\409\\win32" /ve /d 'C:\windows\win.ini' /f >/dev/null
finds oooFoooooo- 'The type library is registered: C:.windows.win.ini' 'register .* by the 32-bit regsvr32'
on_wine reg delete "$key" /f >/dev/null
finds oooFoooooo- 'The type library is registered' 'register .* by the 32-bit regsvr32'
register

sed 's/GetDeviceID/GetDeviceIX/' simulator/ACGReader330.dll >ACGReader330.dll
finds ooooooFooo- 'The reader library has its thirteen functions: it lacks GetDeviceID$' 'take the 32-bit'
sed 's/GetReaderType/GetReaderTypX/' simulator/ACGReader330.dll >ACGReader330.dll
finds ooooooFoFo- 'The reader names its type: 453 ' 'take the ACGReader330.dll that belongs'
cp ACG_MultiISO_TV.dll ACGReader330.dll # names the functions, but has none
finds ooooooFF--- 'The reader library .*: it lacks OpenComm .* CloseComm$' 'take the 32-bit'
finds ooooooFF--- 'The reader opens.*: 453 ' 'take the ACGReader330.dll that belongs'
perl -0777pe 's/(PE\0\0)L\x01(.{18}\x0B)\x01/$1d\x86$2\x02/s' simulator/ACGReader330.dll >ACGReader330.dll # as of 64 bits
finds ooooooFF--- 'The reader library .*: it is a 64-bit file$' 'take the 32-bit'
finds ooooooFF--- 'The reader opens.*: 53 ' 'it is damaged, or needs a library'

mv simulator/ACGReader330.dll "$WINEPREFIX/drive_c/windows/system32"
rm ACGReader330.dll # now that of the system's folder is found
finds oooooooF--- 'The reader opens.*: -2 ' 'is Device right' Device=com1,card=2k
finds oooooooF--- 'The reader opens.*: -4 ' "check the reader's power and cable" Device=com1,readers=
finds ooooooooF-- 'The reader names its type: it returns none' 'switch the reader off and on' Device=com1,reader=,card=none
