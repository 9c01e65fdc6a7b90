#!/usr/bin/env bash
# doctor.sh ZIP: acg doctor names each fault of an installation, and its remedy.
set -euo pipefail
. "$(dirname "$0")/unpacked.sh" "$1" win64

register() { on_wine regsvr32 /s "$@" ACG_MultiISO_TV.dll; }
registry() { on_wine cmd /c 'C:\windows\sysnative\reg.exe' "$@" >/dev/null; } # of 64 bits
altered() { sed "$1" simulator/ACGReader330.dll >ACGReader330.dll; }
# finds STATUSES STEP STATUS DETAIL REMEDY [OPTION...]: STATUSES has the first character of each step's but the
# manifest's, of ok, failed, unknown and not set up; the other words are of one step.
finds() {
    local status=0 output statuses
    output=$(on_wine acg.exe doctor --lang en --json "${@:6}" |
        sed -n '/^{/ { s/},{/\n/g; s/\\\\/\//g; p }') || status=$?
    statuses=$(grep -v '"name":"manifest"' <<<"$output" | sed -E 's/.*"status":"(.).*/\1/' | tr -d '\n')
    if [[ $status != $([[ $1$3 = *f* ]] && echo 1 || echo 0) || $statuses != "$1" ]] ||
        ! grep -qE "\"name\":\"$2\",\"status\":\"$3\",\"detail\":\"?$4.*,\"remedy\":\"?$5" <<<"$output"; then
        printf 'status %s, not found: %s, but:\n%s\n' "$status" "$*" "$output"
        exit 1
    fi
}

finds fuuuufuuuu class failed null 'register .* with the 32-bit regsvr32'
{ on_wine acg.exe doctor --lang fr || true; } | grep -q '^ÉCHEC   La classe est inscrite dans le registre$'
register; finds oooonfuuuu 'reader library' failed 'not found in C:/ACG, C:/windows/syswow64' 'put .* into C:/ACG'
mv ACG_MultiISO_TV.dll away.dll; finds ofuuufuuuu file failed null 'unpack ACG_MultiISO_TV.dll'
head -c 10000 away.dll >ACG_MultiISO_TV.dll; finds ooofufuuuu component failed 8 'the file is damaged'
LC_ALL=C sed s/MSFT/TFSM/ away.dll >ACG_MultiISO_TV.dll; finds ooofufuuuu component failed 8 the # its type library
mv away.dll ACG_MultiISO_TV.dll; key='HKLM\Software\Classes\TypeLib\{F7AA3FEF-4DC8-45C9-BE9F-1C10F86CD5FF}\2.1'
registry add "$key\\409\\win32" /ve /d 'C:\windows\win.ini' /f
finds oofonfuuuu 'type library' failed C:/windows/win.ini 'register .* with the 32-bit regsvr32'
register; registry delete "$key\\0" /f
finds oofonfuuuu 'type library' failed 'missing in the registry: TypeLib/.*/0/win32' register
registry import 64-bit-hosts.reg; finds oofoofuuuu '64-bit programs' ok null null
registry delete 'HKLM\Software\Classes\CLSID\{7F51482E-7387-41BF-9478-E44FB07C38B7}' /f
finds oofoffuuuu '64-bit programs' failed 'missing in the 64-bit registry: .*/AppID' 'import 64-bit-hosts.reg again'
registry import 64-bit-hosts.reg
registry add 'HKLM\Software\Classes\AppID\{7F51482E-7387-41BF-9478-E44FB07C38B7}' /v DllSurrogate /d notepad.exe /f
finds oofoffuuuu '64-bit programs' failed 'no answer for 20 seconds' 'end dllhost.exe'

register /u; altered s/GetDeviceID/GetDeviceIX/; finds fuuuuofooo functions failed 'it lacks GetDeviceID"' 'use .* that'
altered s/GetReaderType/GetReaderTypX/; finds fuuuuofofo 'reader type' failed '453 ' 'use .* that belongs'
cp {ACG_MultiISO_TV,ACGReader330}.dll; finds fuuuuoffuu functions failed 'it lacks OpenComm .* CloseComm"' use
cp ../windows/system32/version.dll ACGReader330.dll; finds fuuuufuuuu 'reader library' failed '.*, it is a 64-bit' use
echo >ACGReader330.dll; finds fuuuufuuuu 'reader library' failed 'C:/ACG/ACGReader330.dll, 193' 'it is damaged'
mv simulator/ACGReader330.dll ../windows/syswow64 # where it is found now
finds fuuuuooooo 'reader library' ok '.*/syswow64/.*; the simulator is loaded' null
finds fuuuuoofuu opening failed '-2 ' 'is Device right' --reader Device=com1,card=2k
finds fuuuuoofuu opening failed '-4 ' "check the reader's power and cable" --reader Device=com1,readers=
finds fuuuuooofu 'reader type' failed 'it returns none' 'switch the reader' --reader Device=com1,reader=,card=none
identity='<assemblyIdentity type="win32" version="1.0.0.0" processorArchitecture="x86" name'
manifest() { echo "<assembly xmlns='urn:schemas-microsoft-com:asm.v1' manifestVersion='1.0'>$identity=$*</assembly>"; }
manifest "'A'/><dependency><dependentAssembly>$identity='B'/></dependentAssembly></dependency>" >acg.exe.manifest
manifest "'B'/><file name='ACG_MultiISO_TV.dll'><comClass clsid='{7F51482E-7387-41BF-9478-E44FB07C38B7}'/></file>" \
    >B.manifest
finds nuuuuooooo manifest ok C:/ACG/ACG_MultiISO_TV.dll null --host acg.exe
rm ACG_MultiISO_TV.dll; finds fuuuuooooo manifest failed 'C:/ACG/acg.exe, .*, there is no file' 'put ' --host acg.exe
rm B.manifest; finds fuuuuooooo manifest failed 'C:/ACG/acg.exe, 14001' 'put ' --host acg.exe
