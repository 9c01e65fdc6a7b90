' Checks an installation step by step, and says how to fix a step that failed.
'
'     cscript //nologo doctor.vbs [/fr | /en] [PARAMETERS]   as in: doctor.vbs "Device=com3;Baud rate=19200"
'
' with the 32-bit cscript, in the user's language where none is asked for. "-": not known, because of a failure
' above, or, for the functions, because of the system's code page; or not there and not needed. Status 1: a
' step failed.
Option Explicit

Const ClassName = "ACG_MultiISO_TV.Encoder"
Const ReaderLibrary = "ACGReader330.dll"
Const Served = 64, NotServed = 65 ' how this script ends when it is asked whether a 64-bit program is served

Dim shell, files, texts, windowsFolder, encoder, image, failed, good, loads
Dim french, parameters, isAsked, argument, processor, classKey, component, typeLibrary, library, isReadable
Dim settings, readerType, serial, card, trouble, remedy, answer
Set shell = CreateObject("WScript.Shell")
Set files = CreateObject("Scripting.FileSystemObject")
Set texts = CreateObject("Scripting.Dictionary")
windowsFolder = files.GetSpecialFolder(0)
failed = False

french = LCase(Left(UserLocale, 2)) = "fr"
For argument = 0 To WScript.Arguments.Count - 1
    Select Case LCase(WScript.Arguments(argument))
        Case "/fr" french = True
        Case "/en" french = False
        Case "/64" isAsked = True
        Case Else parameters = WScript.Arguments(argument)
    End Select
Next
DefineTexts
If isAsked Then AnswerFor64Bits

processor = shell.Environment("Process")("PROCESSOR_ARCHITECTURE") ' as this program sees it
good = Passes(True, processor = "x86", texts("host"), "", _
    texts("run by") & windowsFolder & "\SysWOW64\cscript.exe")

classKey = "CLSID\" & Registered(ClassName & "\CLSID\")
component = Registered(classKey & "\InprocServer32\")
good = Passes(good, component <> "", texts("class"), component, texts("register"))
good = Passes(good, files.FileExists(component), texts("file"), "", texts("unpack"))

typeLibrary = Registered("TypeLib\" & Registered(classKey & "\TypeLib\") & "\" & Registered(classKey & "\Version\") & _
    "\409\win32\")
' The component's own file carries it; the system may put a prefix before the path.
Passes good, Right(LCase(typeLibrary), Len(component)) = LCase(component), texts("type library"), _
    typeLibrary, texts("register")

If good Then trouble = CreationTrouble
good = Passes(good, trouble = "", texts("loads"), trouble, texts("damaged"))
loads = good

If good Then library = LibraryFound
good = Passes(good, library <> "", texts("library"), library, texts("put library"))

If good Then isReadable = HasRead(library)
If isReadable Then trouble = LibraryTrouble
Passes good And isReadable, trouble = "", texts("functions"), trouble, texts("take 32")

If good Then trouble = OpeningTrouble(remedy)
good = Passes(good, trouble = "", texts("opens") & settings, trouble, remedy)

If good Then trouble = TypeTrouble(readerType, remedy)
Passes good, trouble = "", texts("type"), readerType & trouble, remedy

card = "card"
If good Then trouble = CardTrouble(serial, card)
Passes good And card = "card", trouble = "", texts(card), serial & trouble, texts("one card")

If loads Then answer = AnswerOf64Bits
Passes answer = Served Or answer = NotServed, answer = Served, texts("64"), "", texts("import")

If failed Then
    WScript.Echo "        " & texts("more") & files.GetParentFolderName(WScript.ScriptFullName) & "\" & texts("page")
    WScript.Quit 1
End If

' Prints a line; True if the answer is known, and good.
Function Passes(isKnown, isGood, what, detail, remedy)
    Dim whole
    whole = what
    If detail <> "" Then whole = what & texts("colon") & detail
    Passes = isKnown And isGood
    If Passes Then
        WScript.Echo "ok      " & whole
    ElseIf isKnown Then
        WScript.Echo texts("FAILED") & whole
        WScript.Echo "        " & texts("remedy") & remedy
        failed = True
    Else
        WScript.Echo "-       " & what
    End If
End Function

' A key's own value; empty where there is none.
Function Registered(key)
    On Error Resume Next
    Registered = ""
    Registered = shell.RegRead("HKCR\" & key)
End Function

' Reading a member by name leads through the type library that the component carries.
Function CreationTrouble
    Dim state
    On Error Resume Next
    Set encoder = CreateObject(ClassName)
    If Err.Number = 0 Then state = encoder.EncoderState
    If Err.Number > 0 Then CreationTrouble = Err.Number & " " & Err.Description
    If Err.Number < 0 Then CreationTrouble = Hex(Err.Number) & " " & Err.Description
End Function

' The component looks beside itself, then in the folder of its host, then in the system's; not in the current
' one, nor along PATH. What lies beside another host than this script's can't be seen here.
Function LibraryFound
    LibraryFound = files.GetParentFolderName(component) & "\" & ReaderLibrary
    If files.FileExists(LibraryFound) Then Exit Function
    LibraryFound = windowsFolder & "\SysWOW64\" & ReaderLibrary
    If files.FileExists(LibraryFound) Then Exit Function
    LibraryFound = windowsFolder & "\System32\" & ReaderLibrary
    If Not files.FileExists(LibraryFound) Then LibraryFound = ""
End Function

' No script can call a DLL's functions, and opening reaches only some; but their names stand in the file. It
' is read as text of the system's code page, which fails where that has characters of several bytes.
Function HasRead(file)
    On Error Resume Next
    image = files.OpenTextFile(file).ReadAll
    HasRead = (Len(image) = files.GetFile(file).Size)
End Function

Function LibraryTrouble
    Dim kind, name, exported
    On Error Resume Next ' where the file is damaged, no names are found
    kind = Number(Number(60, 4) + 24, 2)
    If kind = &H20B Then
        LibraryTrouble = texts("is 64")
        Exit Function
    End If
    exported = ExportedNames
    For Each name In Array("OpenComm", "SetCommTimeout", "SetCommProtocol", "GetCommProtocol", _
            "GetCommBaudRate", "GetCommTimeout", "DetectReader", "OpenReader", "GetReaderType", _
            "GetDeviceID", "SendCommandGetData", "CloseReader", "CloseComm")
        If InStr(exported, "|" & name & "|") = 0 Then LibraryTrouble = LibraryTrouble & " " & name
    Next
    If LibraryTrouble <> "" Then LibraryTrouble = texts("lacks") & LibraryTrouble
End Function

' "|name|name|...|" from the export table of the format "Portable Executable", 32-bit.
Function ExportedNames
    Dim header, table, names, at, start
    header = Number(60, 4)
    If Number(header + 4, 2) <> &H14C Then Exit Function
    table = Place(header, Number(header + 120, 4))
    names = Place(header, Number(table + 32, 4))
    ExportedNames = "|"
    For at = 0 To Number(table + 24, 4) - 1
        start = Place(header, Number(names + 4 * at, 4)) + 1
        ExportedNames = ExportedNames & Mid(image, start, InStr(start, image, Chr(0)) - start) & "|"
    Next
End Function

' The number in so many bytes at an offset of the file, the lowest first.
Function Number(offset, bytes)
    Dim at
    Number = 0
    For at = bytes To 1 Step -1
        Number = Number * 256 + Asc(Mid(image, offset + at, 1))
    Next
End Function

' The offset in the file of what has this address when it is loaded.
Function Place(header, address)
    Dim section, at, first
    For at = 0 To Number(header + 6, 2) - 1
        section = header + 24 + Number(header + 20, 2) + 40 * at
        first = Number(section + 12, 4)
        If address >= first And address < first + Number(section + 16, 4) Then
            Place = address - first + Number(section + 20, 4)
        End If
    Next
End Function

Function OpeningTrouble(remedy)
    Dim fields, record
    If parameters <> "" Then encoder.Parameters = parameters
    settings = encoder.Parameters
    settings = texts("with") & Replace(Mid(settings, InStr(settings, "Device=")), vbCrLf, ";")
    fields = Split(encoder.GetInformation, "|")
    If encoder.OpenEncoder(fields(4)) = 0 Then Exit Function
    Set record = encoder.LastError
    OpeningTrouble = RecordText & texts("in") & record.RdrCommand
    If record.LastDllError <> 0 Then OpeningTrouble = OpeningTrouble & texts("system error") & record.LastDllError
    remedy = texts("device")
    If record.Number = -4 Then remedy = texts("cable")
    If record.Number = 453 Then remedy = texts("take")
    If record.Number = 53 Then remedy = texts("reinstall")
End Function

Function TypeTrouble(readerType, remedy)
    On Error Resume Next
    remedy = texts("switch")
    readerType = encoder.ReaderType
    If readerType = "" Then TypeTrouble = texts("no type")
    If Err.Number <> 0 Then TypeTrouble = Err.Number & " " & Err.Description
    If Err.Number = 453 Then remedy = texts("take")
End Function

' A field without a card is no failure: then another text is the line's.
Function CardTrouble(serial, card)
    If encoder.ReadSerialNumber(serial) <> 0 Then
        CardTrouble = RecordText
        If encoder.LastError.Number = -8 Then card = "no card"
    End If
    encoder.CloseEncoder
End Function

Function RecordText
    RecordText = encoder.LastError.Number & " " & encoder.LastError.Description
End Function

' Whether a 64-bit program is served only such a program can see: this script, run by the 64-bit script host.
Function AnswerOf64Bits
    Dim host
    host = windowsFolder & "\Sysnative\cscript.exe" ' where 32-bit programs find the 64-bit ones
    If Not files.FileExists(host) Then Exit Function
    AnswerOf64Bits = shell.Run("""" & host & """ //nologo //b """ & WScript.ScriptFullName & """ /64", 0, True)
End Function

Sub AnswerFor64Bits
    If CreationTrouble = "" Then WScript.Quit Served
    If Registered("CLSID\" & Registered(ClassName & "\CLSID\") & "\AppID") <> "" Then WScript.Quit NotServed
    WScript.Quit 0
End Sub

Function UserLocale
    On Error Resume Next
    UserLocale = shell.RegRead("HKCU\Control Panel\International\LocaleName")
End Function

Sub Define(name, inEnglish, inFrench)
    texts(name) = inEnglish
    If french Then texts(name) = inFrench
End Sub

Sub DefineTexts
    Define "FAILED", "FAILED  ", "ÉCHEC   "
    Define "colon", ": ", " : "
    Define "remedy", "remedy: ", "remède : "
    Define "more", "more on failures: ", "plus d'informations : "
    Define "page", "install-en.html", "install-fr.html"

    Define "host", "The script host is 32-bit", "L'hôte de script est en 32 bits"
    Define "run by", "run this script by ", "lancez ce script avec "
    Define "class", "The class is registered", "La classe est enregistrée"
    Define "register", "register ACG_MultiISO_TV.dll by the 32-bit regsvr32, as administrator", _
        "enregistrez ACG_MultiISO_TV.dll avec le regsvr32 32 bits, en tant qu'administrateur"
    Define "file", "The component's file is there", "Le fichier du composant est présent"
    Define "unpack", "unpack ACG_MultiISO_TV.dll to that place again, or register it where it lies now", _
        "décompressez de nouveau ACG_MultiISO_TV.dll à cet endroit, ou enregistrez-le là où il se trouve"
    Define "type library", "The type library is registered", "La bibliothèque de types est enregistrée"
    Define "loads", "The component loads, and its type library with it", _
        "Le composant se charge, avec sa bibliothèque de types"
    Define "damaged", "the file is damaged, or something keeps it from loading: unpack it again", _
        "le fichier est endommagé, ou quelque chose l'empêche de se charger : décompressez-le de nouveau"

    Define "library", "The reader library is found", "La bibliothèque du lecteur est présente"
    Define "put library", _
        "put the vendor's " & ReaderLibrary & " beside the component; without a reader, the simulated one", _
        "placez le fichier " & ReaderLibrary & " du fabricant à côté du composant ; sans lecteur, le fichier simulé"
    Define "functions", "The reader library has its thirteen functions", _
        "La bibliothèque du lecteur a ses treize fonctions"
    Define "is 64", "it is a 64-bit file", "c'est un fichier 64 bits"
    Define "lacks", "it lacks", "il manque"
    Define "take 32", "take the 32-bit " & ReaderLibrary & " that belongs to this component", _
        "prenez le fichier " & ReaderLibrary & " 32 bits qui correspond à ce composant"

    Define "opens", "The reader opens", "Le lecteur s'ouvre"
    Define "with", " with ", " avec "
    Define "in", ", in ", ", dans "
    Define "system error", ", system error ", ", erreur système "
    Define "device", "is Device right, as in doctor.vbs Device=com3? Is another program using the reader?", _
        "Device est-il juste, comme dans doctor.vbs Device=com3 ? Un autre programme utilise-t-il le lecteur ?"
    Define "cable", "check the reader's power and cable; then Device, Baud rate, Autodetect", _
        "vérifiez l'alimentation et le câble du lecteur, puis Device, Baud rate et Autodetect"
    Define "take", "take the " & ReaderLibrary & " that belongs to this component", _
        "prenez le fichier " & ReaderLibrary & " qui correspond à ce composant"
    Define "reinstall", "it is damaged, or needs a library that isn't there: reinstall it", _
        "elle est endommagée, ou il lui manque une bibliothèque : réinstallez-la"
    Define "type", "The reader names its type", "Le lecteur indique son type"
    Define "no type", "it returns none", "il n'en indique aucun"
    Define "switch", "switch the reader off and on", "éteignez le lecteur, puis rallumez-le"

    Define "card", "A card is in the field", "Une carte est présente"
    Define "no card", "No card is in the field", "Aucune carte n'est présente"
    Define "one card", "place one card on the reader, and hold it still", _
        "posez une seule carte sur le lecteur, sans la bouger"
    Define "64", "64-bit programs can use the component", "Les programmes 64 bits peuvent utiliser le composant"
    Define "import", "import 64-bit-hosts.reg again, as administrator, by the 64-bit reg", _
        "importez de nouveau 64-bit-hosts.reg, en tant qu'administrateur, avec le reg 64 bits"
End Sub
