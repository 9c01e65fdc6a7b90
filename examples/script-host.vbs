' A host in VBScript: opens the reader, reads and writes a card, and shows what failures leave.
'
'     cscript //nologo script-host.vbs [PARAMETERS]      as in: script-host.vbs Device=com1,card=4k
'
' with the 32-bit cscript: on 64-bit Windows %SystemRoot%\SysWOW64\cscript.exe. Ends with status 1, and the
' record shown, if a step fails that shouldn't.
'
' It is for a new card. It writes blocks 4 and 5, and rewrites the trailer of sector 1 twice: to levels 13 13 13
' and 12, with the factory's keys, and at the end to those of a new card.
Option Explicit

Const sceSuccess = 0, sceError = 2
Const KeyTypeA = 1, KeyTypeB = 2, KeyAAlone = 1, BothKeys = 2
Const AReadsBWrites = 13         ' scbs_A_Read + scbs_B_ReadWrite
Const BWritesTrailer = 12        ' scss_B_WriteKeysConditions
Const AWrites = 3                ' scbs_A_ReadWrite, and for the trailer scss_A_WriteKeysConditions
Const FactoryKey = "FFFFFFFFFFFF", FactoryBX = 105, Sector = 1, Block = 4, ValueBlock = 5

Dim encoder, information, fields, serial, contents, result, cardType
Dim keys, level0, level1, level2, trailer, bx
Set encoder = CreateObject("ACG_MultiISO_TV.Encoder")
If WScript.Arguments.Count > 0 Then encoder.Parameters = WScript.Arguments(0)

' The number that opens the encoder is the fifth field of the information text.
information = encoder.GetInformation
Show "Information", information
fields = Split(information, "|")
MustSucceed "OpenEncoder", encoder.OpenEncoder(fields(4))
Show "State", StateName(encoder.EncoderState)
Show "Reader type", encoder.ReaderType

MustSucceed "ReadSerialNumber", encoder.ReadSerialNumber(serial)
Show "Serial", serial
MustSucceed "ReadDataBloc", encoder.ReadDataBloc(Block, FactoryKey, KeyTypeA, contents)
Show "Block before", contents
contents = "54617276656C6C6F2073617973206869" ' "Tarvello says hi"
MustSucceed "WriteDataBloc", encoder.WriteDataBloc(Block, FactoryKey, KeyTypeA, contents)
MustSucceed "ReadDataBloc", encoder.ReadDataBloc(Block, FactoryKey, KeyTypeA, contents)
Show "Block after", contents

' An operation gives sceError, and the record says why; four properties raise.
result = encoder.ReadDataBloc(Block, "000000000000", KeyTypeA, contents)
If result = sceError Then WScript.Echo "A wrong key returns sceError, and the record says why:"
ShowRecord
On Error Resume Next
cardType = encoder.CardType
Show "CardType raises", Err.Number & ", " & Err.Description
On Error GoTo 0

' Key A reads and key B writes; a value block; and the sector as the factory made it.
Show "Sector 1", "gets levels 13 13 13 and 12, then 3 3 3 and 3, as on a new card"
MustSucceed "WriteSectorTrailer", encoder.WriteSectorTrailer(Sector, FactoryKey, KeyTypeA, FactoryKey, _
    FactoryKey, BothKeys, AReadsBWrites, AReadsBWrites, AReadsBWrites, BWritesTrailer, FactoryBX)
MustSucceed "ReadSectorTrailer", encoder.ReadSectorTrailer(Sector, FactoryKey, KeyTypeA, keys, level0, _
    level1, level2, trailer, bx)
Show "Sector trailer", "keys " & keys & ", blocks " & level0 & " " & level1 & " " & level2 & _
    ", trailer " & trailer & ", BX " & bx
MustSucceed "WriteValueBloc", encoder.WriteValueBloc(ValueBlock, FactoryKey, KeyTypeB, 1000)
MustSucceed "ReadDataBloc", encoder.ReadDataBloc(ValueBlock, FactoryKey, KeyTypeA, contents)
Show "Value block", contents
MustSucceed "WriteSectorTrailer", encoder.WriteSectorTrailer(Sector, FactoryKey, KeyTypeB, FactoryKey, _
    FactoryKey, KeyAAlone, AWrites, AWrites, AWrites, AWrites, FactoryBX)

MustSucceed "CloseEncoder", encoder.CloseEncoder
Show "State", StateName(encoder.EncoderState)

Sub Show(label, text)
    WScript.Echo Left(label & Space(17), 17) & text
End Sub

Sub ShowRecord
    Dim record
    Set record = encoder.LastError
    Show "  Number", record.Number
    Show "  Description", record.Description
    Show "  LastDllError", record.LastDllError
    Show "  ComFunction", record.ComFunction
    Show "  RdrCommand", record.RdrCommand
    Show "  RdrRetCode", record.RdrRetCode
End Sub

Sub MustSucceed(name, result)
    If result = sceSuccess Then Exit Sub
    WScript.Echo name & " failed:"
    ShowRecord
    encoder.CloseEncoder
    WScript.Quit 1
End Sub

Function StateName(state)
    Dim names
    names = Array("unknown", "closed", "opened, no card", "ready")
    StateName = names(state)
End Function
