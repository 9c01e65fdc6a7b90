' Checks an installation step by step, and says how to fix a step that failed.
'
'     cscript //nologo doctor.vbs [PARAMETERS]      as in: doctor.vbs "Device=com3;Baud rate=19200"
'
' with the 32-bit cscript. "-": not known, because of a failure above, or, for the functions, because of the
' system's code page. Status 1: a step failed.
Option Explicit

Const ClassName = "ACG_MultiISO_TV.Encoder"
Const ReaderLibrary = "ACGReader330.dll"
Const RegisterIt = "register ACG_MultiISO_TV.dll by the 32-bit regsvr32, as administrator: see install-en.html"

Dim shell, files, windowsFolder, encoder, image, failed, good
Dim processor, classKey, component, typeLibrary, library, isReadable, settings, readerType, trouble, remedy
Set shell = CreateObject("WScript.Shell")
Set files = CreateObject("Scripting.FileSystemObject")
windowsFolder = files.GetSpecialFolder(0)
failed = False

processor = shell.Environment("Process")("PROCESSOR_ARCHITECTURE") ' as this program sees it
good = Passes(True, processor = "x86", "The script host is 32-bit", "", _
    "run this script by " & windowsFolder & "\SysWOW64\cscript.exe")

classKey = "CLSID\" & Registered(ClassName & "\CLSID\")
component = Registered(classKey & "\InprocServer32\")
good = Passes(good, component <> "", "The class is registered", component, RegisterIt)
good = Passes(good, files.FileExists(component), "The component's file is there", "", _
    "unpack ACG_MultiISO_TV.dll to that place again, or register it where it lies now")

typeLibrary = Registered("TypeLib\" & Registered(classKey & "\TypeLib\") & "\" & Registered(classKey & "\Version\") & _
    "\409\win32\")
' The component's own file carries it; the system may put a prefix before the path.
Passes good, Right(LCase(typeLibrary), Len(component)) = LCase(component), "The type library is registered", _
    typeLibrary, RegisterIt

If good Then trouble = CreationTrouble
good = Passes(good, trouble = "", "The component loads, and its type library with it", trouble, _
    "the file is damaged, or something keeps it from loading: unpack it again")

If good Then library = LibraryFound
good = Passes(good, library <> "", "The reader library is found", library, _
    "put the vendor's " & ReaderLibrary & " beside the component; without a reader, the simulated one")

If good Then isReadable = HasRead(library)
If isReadable Then trouble = LibraryTrouble
Passes good And isReadable, trouble = "", "The reader library has its thirteen functions", trouble, _
    "take the 32-bit " & ReaderLibrary & " that belongs to this component"

If good Then trouble = OpeningTrouble(remedy)
good = Passes(good, trouble = "", "The reader opens" & settings, trouble, remedy)

If good Then trouble = TypeTrouble(readerType, remedy)
Passes good, trouble = "", "The reader names its type", readerType & trouble, remedy

If failed Then WScript.Quit 1

' Prints a line; True if the answer is known, and good.
Function Passes(isKnown, isGood, what, detail, remedy)
    Dim whole
    whole = what
    If detail <> "" Then whole = what & ": " & detail
    Passes = isKnown And isGood
    If Passes Then
        WScript.Echo "ok      " & whole
    ElseIf isKnown Then
        WScript.Echo "FAILED  " & whole
        WScript.Echo "        remedy: " & remedy
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
        LibraryTrouble = "it is a 64-bit file"
        Exit Function
    End If
    exported = ExportedNames
    For Each name In Array("OpenComm", "SetCommTimeout", "SetCommProtocol", "GetCommProtocol", _
            "GetCommBaudRate", "GetCommTimeout", "DetectReader", "OpenReader", "GetReaderType", _
            "GetDeviceID", "SendCommandGetData", "CloseReader", "CloseComm")
        If InStr(exported, "|" & name & "|") = 0 Then LibraryTrouble = LibraryTrouble & " " & name
    Next
    If LibraryTrouble <> "" Then LibraryTrouble = "it lacks" & LibraryTrouble
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
    If WScript.Arguments.Count > 0 Then encoder.Parameters = WScript.Arguments(0)
    settings = encoder.Parameters
    settings = " with " & Replace(Mid(settings, InStr(settings, "Device=")), vbCrLf, ";")
    fields = Split(encoder.GetInformation, "|")
    If encoder.OpenEncoder(fields(4)) = 0 Then Exit Function
    Set record = encoder.LastError
    OpeningTrouble = record.Number & " " & record.Description & ", in " & record.RdrCommand
    If record.LastDllError <> 0 Then OpeningTrouble = OpeningTrouble & ", system error " & record.LastDllError
    remedy = "is Device right, as in doctor.vbs Device=com3? Is another program using the reader?"
    If record.Number = -4 Then remedy = "check the reader's power and cable; then Device, Baud rate, Autodetect"
    If record.Number = 453 Then remedy = "take the " & ReaderLibrary & " that belongs to this component"
    If record.Number = 53 Then remedy = "it is damaged, or needs a library that isn't there: reinstall it"
End Function

Function TypeTrouble(readerType, remedy)
    On Error Resume Next
    remedy = "switch the reader off and on"
    readerType = encoder.ReaderType
    If readerType = "" Then TypeTrouble = "it returns none"
    If Err.Number <> 0 Then TypeTrouble = Err.Number & " " & Err.Description
    If Err.Number = 453 Then remedy = "take the " & ReaderLibrary & " that belongs to this component"
    encoder.CloseEncoder
End Function
