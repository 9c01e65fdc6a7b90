#!/usr/bin/env bash
# setup.sh ZIP WINE: the setup program beside ZIP, in a Wine win32 or win64, registers what the install page does,
# updates, refuses, changes nothing if it fails, and removes what it has installed, and no more.
set -euo pipefail
. "$(dirname "$0")/unpacked.sh" "$1" "$2"

programs='Program Files'
on_machine() { on_wine cmd /c "$@"; }
if [ "$2" = win64 ]; then
    programs+=' (x86)'
    on_machine() { on_wine cmd /c 'C:\windows\sysnative\cmd.exe' /c "$@"; }
fi
folder=../$programs/ACG_MultiISO_TV
component="C:\\$programs\\ACG_MultiISO_TV\\ACG_MultiISO_TV.dll"
uninstall="\"C:\\$programs\\ACG_MultiISO_TV\\uninstall.exe\" /S"
make_setup() { # NAME VERSION: of the files that are here
    makensis -V1 -INPUTCHARSET UTF8 -DVERSION="$2" -DFOLDER="$PWD" -DFILES="${zip%.zip}.nsh" \
        -DOUTPUT="$PWD/$1.exe" "$repository/package/setup.nsi"
}
# The registry's classes, whatever they are.
classes() {
    on_machine reg export 'HKLM\Software\Classes' 'C:\classes.reg' /y >/dev/null
    cat ../classes.reg
}
# registered: what is registered of the component, in both views. state: also as a program, and the files.
registered() { on_machine 'C:\ACG\query.bat' || true; } # no key, no success
state() {
    registered
    on_wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\ACG_MultiISO_TV' || true
    [ ! -e "$folder" ] || (cd "$folder" && find . -type f -exec sha1sum {} + | LC_ALL=C sort)
}
keys=({,Wow6432Node\\}{CLSID,AppID}\\{7F51482E-7387-41BF-9478-E44FB07C38B7}
    {,Wow6432Node\\}CLSID\\{358E88B7-D9AC-4D9D-BCAC-8C4E2E69463F} {,Wow6432Node\\}TypeLib\\{F7AA3FEF-4DC8-45C9-BE9F-1C10F86CD5FF}
    {,Wow6432Node\\}Interface\\{D5EDFB91-BA4B-4C89-AE6C-95A011F966CC}
    {,Wow6432Node\\}Interface\\{69B6A6FF-B477-475A-B892-4CD0B287D7A4} ACG_MultiISO_TV.{Encoder,CError})
printf '@reg query HKLM\\Software\\Classes\\%s /s\r\n' "${keys[@]}" >query.bat
# gives STATUS SETUP...: the exit status. A program of Unix sees but 8 bits of it.
gives() {
    printf '@start "" /wait %s\r\n@echo %%errorlevel%%\r\n' "${*:2}" >run.bat
    local status
    status=$(on_wine cmd /c run.bat) || true
    [ "$status" = "$1" ] || { echo "${*:2}: $status"; exit 1; }
}
same() { cmp "$1" <("$2") || { diff -a "$1" <("$2"); exit 1; }; }

cp "${zip%.zip}-setup.exe" this-setup.exe
make_setup older-setup 7.0.9
[ "$2" = win32 ] || classes >empty.reg # both views
state >nothing

# By the install page's commands, in that folder.
mkdir "$folder"
cp ACG_MultiISO_TV.dll "$folder"
on_wine regsvr32 /s "$component"
registered >by-page
on_wine regsvr32 /s /u ACG_MultiISO_TV.dll # another folder's, which isn't registered
same by-page registered
if [ "$2" = win64 ]; then
    on_machine reg import 64-bit-hosts.reg >/dev/null
    registered >by-page-64
    on_machine reg import 64-bit-hosts-remove.reg >/dev/null
else
    cp by-page by-page-64 # no option there
fi
on_wine regsvr32 /u /s "$component"
rm -r "$folder"
cmp -s by-page <(registered) && exit 1

gives 0 older-setup.exe /S
same by-page registered
gives 0 older-setup.exe /S /hosts64
same by-page-64 registered
gives 0 this-setup.exe /S # an update keeps the option
same by-page-64 registered
diff <(sed 's/\\/\//g; s/.*"\(.*\)"/\1/' "${zip%.zip}.nsh"; echo uninstall.exe) \
    <(cd "$folder" && find . -type f -printf '%P\n' | LC_ALL=C sort) 
state >installed
gives 1638 older-setup.exe /S
same installed state

failures() {
    # Neither a component that can't be loaded, nor one without a type library to register.
    mv ACG_MultiISO_TV.dll component.dll
    head -c 10000 component.dll >ACG_MultiISO_TV.dll
    make_setup unloadable-setup 7.9.0
    gives 3 unloadable-setup.exe /S
    same installed state
    LC_ALL=C sed 's/MSFT/TFSM/' component.dll >ACG_MultiISO_TV.dll
    make_setup unregistered-setup 7.9.0
    gives 5 unregistered-setup.exe /S
    same installed state

    # Held as by the system's loader, so that it can be moved, though not written; and by a program that allows neither.
    cat >hold.cpp <<'END'
#include <cstdlib>
#include <windows.h>
int main(int, char* argv[])
{
    CreateFileA(argv[1], GENERIC_READ, FILE_SHARE_READ | std::atoi(argv[2]), nullptr, OPEN_EXISTING, 0, nullptr);
    for (CreateDirectoryA("held", nullptr); GetFileAttributesA("held") != INVALID_FILE_ATTRIBUTES; Sleep(20)) {
    }
}
END
    i686-w64-mingw32-g++-win32 -static hold.cpp -o hold.exe
    hold() { # SHARING COMMAND...: while the component is held
        wine hold.exe "$component" "$1" </dev/null >/dev/null 2>&1 &
        for _ in {1..100}; do [ -e held ] && break; sleep 0.1; done
        "${@:2}"
        rmdir held
        wait $!
    }
    hold 0 gives 2 this-setup.exe /S
    same installed state
    hold 4 gives 3010 this-setup.exe /S
    rm -rf "$folder"/ns*.tmp # what the restart would remove
    same installed state
}
[ "$2" = win32 ] || failures # the same there

cp simulator/ACGReader330.dll "$folder"
echo 1 >"$folder/ACGReader330.log"
gives 0 "$uninstall"
for _ in {1..100}; do [ -e "$folder/uninstall.exe" ] || break; sleep 0.1; done
[ "$(ls "$folder")" = $'ACGReader330.dll\nACGReader330.log' ]
rm -r "$folder"
same nothing state
[ "$2" = win32 ] || same empty.reg classes
