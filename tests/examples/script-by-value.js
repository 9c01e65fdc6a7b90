// A host in JScript, which passes values alone: it can call every operation, and gets back its result only.
var encoder = new ActiveXObject("ACG_MultiISO_TV.Encoder"), key = "FFFFFFFFFFFF", text = "untouched", n = 7;

WScript.Echo("open " + encoder.OpenEncoder(encoder.GetInformation().split("|")[4]));
WScript.Echo("read " + [
    encoder.ReadSerialNumber(text),
    encoder.ReadDataBloc(4, key, 1, text),
    encoder.ReadManufacturerCode(key, 1, n, n, text),
    encoder.ReadSectorTrailer(1, key, 1, n, n, n, n, n, n)]);
WScript.Echo("write " + [
    encoder.WriteDataBloc(4, key, 1, "00112233445566778899AABBCCDDEEFF"),
    encoder.WriteValueBloc(5, key, 1, 1000),
    encoder.WriteBytesInBloc(4, key, 1, 0, 1, "FFFF"),
    encoder.WriteSectorTrailer(1, key, 1, key, key, 2, 13, 13, 13, 12),
    encoder.WriteSectorTrailer(1, key, 2, key, key, 2, 13, 13, 13, 12, 105)]);
WScript.Echo(text + " " + n);
WScript.Echo("refused " + encoder.WriteDataBloc(4, key, 2, text) + ": " + encoder.LastError.Number);
encoder.ReOpenEncoder();
WScript.Echo("state " + encoder.EncoderState + ", close " + encoder.CloseEncoder());
