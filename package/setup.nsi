; setup.exe: what the install page has its reader do, done by a program. scripts/package makes it, and defines
; VERSION; FOLDER, the files to install; FILES, a list of them, each as ${File} "PATH"; OUTPUT; and SIGN, the command that signs the
; uninstaller, if there is one.
;
; What an earlier version has is moved into a folder of its own first. So whatever fails, all can be put back; and a
; file that a program has loaded can be moved too, though not overwritten.
Unicode true
ManifestDPIAware true
RequestExecutionLevel admin
SetCompressor /SOLID lzma
!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include x64.nsh
!include WordFunc.nsh

!define PRODUCT ACG_MultiISO_TV
!define COMPONENT "$INSTDIR\ACG_MultiISO_TV.dll"
!define CLASS "Software\Classes\CLSID\{7F51482E-7387-41BF-9478-E44FB07C38B7}"
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
; Exit statuses, beside those of NSIS (0 done, 1 cancelled, 2 failed) and of regsvr32 (3 to 5): the system's own.
!define NEWER_IS_INSTALLED 1638
!define RESTART_REQUIRED 3010

Name "${PRODUCT} ${VERSION}"
OutFile "${OUTPUT}"
!ifdef SIGN
    !uninstfinalize '"${SIGN}" "%1"' = 0
!endif
InstallDir "$PROGRAMFILES32\${PRODUCT}"
BrandingText "${PRODUCT} ${VERSION}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0x409 CompanyName Tarvello
VIAddVersionKey /LANG=0x409 FileDescription "Setup of ${PRODUCT}"
VIAddVersionKey /LANG=0x409 FileVersion "${VERSION}"
VIAddVersionKey /LANG=0x409 LegalCopyright ""
VIAddVersionKey /LANG=0x409 ProductName "${PRODUCT}"
VIAddVersionKey /LANG=0x409 ProductVersion "${VERSION}"

Var Aside ; the folder of what was there before
Var AllAside ; 1 if nothing of it is left in its place
Var FolderWasThere
Var Registered ; the path of the component that was registered before; empty for none
Var Hosts64Were ; not empty if 64-bit programs could use it before

!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_PRE SkipFolderOfUpdate
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
; The system's language chooses; the first one serves for all others.
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE French

!macro Text NAME ENGLISH FRENCH
    LangString ${NAME} ${LANG_ENGLISH} "${ENGLISH}"
    LangString ${NAME} ${LANG_FRENCH} "${FRENCH}"
!macroend
!insertmacro Text For64Bit "For 64-bit programs" "Programmes 64 bits"
!insertmacro Text AboutComponent \
    "The component, registered for 32-bit programs; acg, the program for technicians; the documentation." \
    "Le composant, enregistré pour les programmes 32 bits ; acg, le programme des techniciens ; la documentation."
!insertmacro Text About64Bit "Windows loads the component for 64-bit programs, in a 32-bit process of its own." \
    "Windows charge le composant pour les programmes 64 bits, dans un processus 32 bits séparé."
!insertmacro Text NewerIsInstalled "Version $0 is installed, which is newer. Replace it by ${VERSION}?" \
    "La version $0, plus récente, est installée. La remplacer par la version ${VERSION} ?"
!insertmacro Text InUse \
    "$0 is in use$1.$\r$\n$\r$\nClose what uses it and retry. Or ignore it: running programs keep the old version until they end, and it is deleted when Windows restarts." \
    "$0 est en cours d'utilisation$1.$\r$\n$\r$\nFermez ce qui l'utilise et réessayez. Ou ignorez-le : les programmes en cours gardent l'ancienne version jusqu'à leur fin, et elle est supprimée au redémarrage de Windows."
!insertmacro Text UsedBy " by: " " par : "
!insertmacro Text FilesFailed "Files in $INSTDIR can't be replaced. Everything is as it was." \
    "Impossible de remplacer des fichiers de $INSTDIR. Tout est resté comme avant."
!insertmacro Text RegistrationFailed "The registration failed (status $0). Everything is as it was." \
    "L'enregistrement a échoué (code $0). Tout est resté comme avant."
!insertmacro Text RemovalFailed \
    "The component can't be unregistered (status $0), and nothing was removed. Run setup again, which repairs it, and then remove it." \
    "Impossible d'annuler l'enregistrement du composant (code $0) ; rien n'a été supprimé. Relancez le programme d'installation, qui le répare, puis désinstallez."

; ForEachFile ACTION: a macro with a file's name below the folder.
!macro ForEachFile ACTION
    !define File "!insertmacro ${ACTION}"
    !include "${FILES}"
    ${File} uninstall.exe
    !undef File
!macroend

; Regsvr32 OPTIONS FILE: its exit status goes to $0.
!macro Regsvr32 OPTIONS FILE
    StrCpy $0 3 ; as if the file couldn't be loaded
    ExecWait '"$SYSDIR\regsvr32.exe" /s ${OPTIONS} "${FILE}"' $0
!macroend

; Import FILE: of settings for 64-bit programs, by the 64-bit reg; its exit status goes to $0.
!macro Import FILE
    nsExec::Exec '"$WINDIR\sysnative\reg.exe" import "${FILE}"'
    Pop $0
!macroend

; What is registered: to $Registered and $Hosts64Were.
!macro ReadRegistration
    ReadRegStr $Registered HKLM "${CLASS}\InprocServer32" ""
    StrCpy $Hosts64Were ""
    ${If} ${RunningX64}
        SetRegView 64
        ReadRegStr $Hosts64Were HKLM "${CLASS}" AppID
        SetRegView 32
    ${EndIf}
!macroend

!macro MoveAside FILE
    ${If} ${FileExists} "$INSTDIR\${FILE}"
        Rename "$INSTDIR\${FILE}" "$Aside\${FILE}"
    ${EndIf}
!macroend

!macro Extract FILE
    !if "${FILE}" == uninstall.exe
        WriteUninstaller "$INSTDIR\${FILE}"
    !else
        File "/oname=${FILE}" "${FOLDER}\${FILE}"
    !endif
!macroend

!macro PutBack FILE
    ${If} $AllAside == 1
        Delete "$INSTDIR\${FILE}"
    ${EndIf}
    Rename "$Aside\${FILE}" "$INSTDIR\${FILE}"
!macroend

; One that is loaded goes when Windows restarts.
!macro DeleteAside FILE
    Delete /REBOOTOK "$Aside\${FILE}"
!macroend

!macro Remove FILE
    !if "${FILE}" == uninstall.exe
        Delete "$INSTDIR\${FILE}" ; it may be what runs
    !else
        Delete /REBOOTOK "$INSTDIR\${FILE}"
    !endif
!macroend

; RemoveFolder FOLDER: unless something else is in it. One whose files go when Windows restarts goes then.
!macro RemoveFolder FOLDER
    RMDir "${FOLDER}\simulator"
    RMDir "${FOLDER}\recorder"
    RMDir "${FOLDER}"
    ${If} ${RebootFlag}
        RMDir /REBOOTOK "${FOLDER}\simulator"
        RMDir /REBOOTOK "${FOLDER}\recorder"
        RMDir /REBOOTOK "${FOLDER}"
    ${EndIf}
!macroend

; All as it was before, also in the registry.
Function RollBack
    SetOutPath $TEMP ; no folder that may go
    !insertmacro ForEachFile PutBack
    !insertmacro RemoveFolder $Aside
    RMDir "$INSTDIR\simulator"
    RMDir "$INSTDIR\recorder"
    ${If} $FolderWasThere == 0
        RMDir "$INSTDIR"
    ${EndIf}
    ${If} $Registered != ""
        !insertmacro Regsvr32 "" "$Registered"
    ${EndIf}
    ${If} $Hosts64Were != ""
        !insertmacro Import "$PLUGINSDIR\64-bit-hosts.reg"
    ${EndIf}
FunctionEnd

; Also if a file can't be extracted, for want of space.
Function .onInstFailed
    ${If} $Aside != ""
        Call RollBack
        StrCpy $Aside ""
    ${EndIf}
FunctionEnd

; Fail TEXT STATUS
!macro Fail TEXT STATUS
    SetErrorLevel ${STATUS}
    Push "${TEXT}"
    Call .onInstFailed
    Pop $1
    DetailPrint $1
    MessageBox MB_OK|MB_ICONSTOP $1 /SD IDOK
    Abort
!macroend

; The programs that have the file $0 open, as the system names them, to $1, with the words before them; else empty.
Function FindHolders
    StrCpy $1 ""
    System::Call 'rstrtmgr::RmStartSession(*i .r2, i 0, w .r3) i .r4'
    ${If} $4 == 0
        System::Call 'rstrtmgr::RmRegisterResources(i r2, i 1, *w "$INSTDIR\$0", i 0, p 0, i 0, p 0) i .r4'
        System::Alloc 6680 ; ten of 668 bytes: a process, its name at 12, a service
        Pop $5
        System::Call 'rstrtmgr::RmGetList(i r2, *i .r6, *i 10 r7, p r5, *i 0) i .r4'
        ${If} $4 == 0
            ${For} $6 1 $7
                IntOp $8 $6 - 1
                IntOp $8 $8 * 668
                IntOp $8 $8 + 12
                IntOp $8 $8 + $5
                System::Call '*$8(&w256 .r9)'
                ${If} $1 == ""
                    StrCpy $1 "$(UsedBy)$9"
                ${Else}
                    StrCpy $1 "$1, $9"
                ${EndIf}
            ${Next}
        ${EndIf}
        System::Free $5
        System::Call 'rstrtmgr::RmEndSession(i r2)'
    ${EndIf}
FunctionEnd

; Names what uses a file that is to be replaced, and asks what to do. Silent, it goes on.
!macro AskIfUsed FILE
    StrCpy $0 "${FILE}"
    Call AskIfUsed
!macroend

Function AskIfUsed
    ${Do}
        ${IfNot} ${FileExists} "$INSTDIR\$0"
            Return
        ${EndIf}
        ClearErrors
        FileOpen $1 "$INSTDIR\$0" a
        ${IfNot} ${Errors}
            FileClose $1
            Return
        ${EndIf}
        Call FindHolders
        DetailPrint "$0$1"
        MessageBox MB_ABORTRETRYIGNORE|MB_ICONEXCLAMATION $(InUse) /SD IDIGNORE \
            IDRETRY again IDIGNORE goOn
        SetErrorLevel 1
        Quit
    goOn:
        SetRebootFlag true
        Return
    again:
    ${Loop}
FunctionEnd

Section "${PRODUCT}" Required
    SectionIn RO
    !insertmacro AskIfUsed ACG_MultiISO_TV.dll
    !insertmacro AskIfUsed acg.exe

    !insertmacro ReadRegistration
    File "/oname=$PLUGINSDIR\64-bit-hosts.reg" "${FOLDER}/64-bit-hosts.reg"
    StrCpy $FolderWasThere 0
    ${If} ${FileExists} "$INSTDIR\*.*"
        StrCpy $FolderWasThere 1
    ${EndIf}
    ClearErrors
    CreateDirectory "$INSTDIR\simulator"
    CreateDirectory "$INSTDIR\recorder"
    GetTempFileName $Aside "$INSTDIR"
    Delete "$Aside"
    CreateDirectory "$Aside\simulator"
    CreateDirectory "$Aside\recorder"
    SetOutPath "$INSTDIR"

    ; By the component that has made it, since a newer one may register other things.
    ${If} $Registered == "${COMPONENT}"
        ${If} $Hosts64Were != ""
            !insertmacro Import "$INSTDIR\64-bit-hosts-remove.reg"
        ${EndIf}
        !insertmacro Regsvr32 /u "${COMPONENT}"
    ${EndIf}

    ClearErrors
    !insertmacro ForEachFile MoveAside
    ${IfNot} ${Errors}
        StrCpy $AllAside 1
        SetOverwrite try
        !insertmacro ForEachFile Extract
        SetOverwrite on
    ${EndIf}
    ${If} ${Errors}
        !insertmacro Fail $(FilesFailed) 2
    ${EndIf}

    !insertmacro Regsvr32 "" "${COMPONENT}"
    ${If} $0 != 0
        !insertmacro Fail $(RegistrationFailed) $0
    ${EndIf}
SectionEnd

Section /o $(For64Bit) Hosts64
    !insertmacro Import "$INSTDIR\64-bit-hosts.reg"
    ${If} $0 != 0
        !insertmacro Fail $(RegistrationFailed) 2
    ${EndIf}
SectionEnd

Section
    !insertmacro ForEachFile DeleteAside
    !insertmacro RemoveFolder $Aside
    StrCpy $Aside ""

    WriteRegStr HKLM "${ENTRY}" DisplayName "${PRODUCT}"
    WriteRegStr HKLM "${ENTRY}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${ENTRY}" Publisher Tarvello
    WriteRegStr HKLM "${ENTRY}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${ENTRY}" UninstallString '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${ENTRY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${ENTRY}" NoModify 1
    WriteRegDWORD HKLM "${ENTRY}" NoRepair 1
    SectionGetSize ${Required} $0
    WriteRegDWORD HKLM "${ENTRY}" EstimatedSize $0
    ${If} ${RebootFlag}
        SetErrorLevel ${RESTART_REQUIRED}
    ${EndIf}
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${Required} $(AboutComponent)
    !insertmacro MUI_DESCRIPTION_TEXT ${Hosts64} $(About64Bit)
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function .onInit
    InitPluginsDir
    ReadRegStr $0 HKLM "${ENTRY}" DisplayVersion
    ${If} $0 != ""
        ${VersionCompare} $0 ${VERSION} $1
        ${If} $1 == 1
            MessageBox MB_YESNO|MB_ICONEXCLAMATION|MB_DEFBUTTON2 $(NewerIsInstalled) /SD IDNO IDYES older
            SetErrorLevel ${NEWER_IS_INSTALLED}
            Quit
        older:
        ${EndIf}
        ReadRegStr $INSTDIR HKLM "${ENTRY}" InstallLocation
    ${EndIf}

    ; An update keeps what was chosen.
    !insertmacro ReadRegistration
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 /hosts64 $1
    ${IfNot} ${RunningX64}
        !insertmacro UnselectSection ${Hosts64}
        SectionSetText ${Hosts64} ""
    ${ElseIfNot} ${Errors}
    ${OrIf} $Hosts64Were != ""
        !insertmacro SelectSection ${Hosts64}
    ${EndIf}
FunctionEnd

; It is where the earlier version is.
Function SkipFolderOfUpdate
    ReadRegStr $0 HKLM "${ENTRY}" InstallLocation
    ${If} $0 != ""
        Abort
    ${EndIf}
FunctionEnd

Section Uninstall
    SetOutPath $TEMP ; no folder that may go
    !insertmacro ReadRegistration
    ${If} $Registered == "${COMPONENT}" ; another folder's stays
        ${If} $Hosts64Were != ""
            !insertmacro Import "$INSTDIR\64-bit-hosts-remove.reg"
        ${EndIf}
        !insertmacro Regsvr32 /u "${COMPONENT}"
        ${If} $0 != 0
            SetErrorLevel $0
            MessageBox MB_OK|MB_ICONSTOP $(RemovalFailed) /SD IDOK
            Abort
        ${EndIf}
    ${EndIf}
    !insertmacro ForEachFile Remove
    !insertmacro RemoveFolder $INSTDIR
    DeleteRegKey HKLM "${ENTRY}"
    ${If} ${RebootFlag}
        SetErrorLevel ${RESTART_REQUIRED}
    ${EndIf}
SectionEnd
