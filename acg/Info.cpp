// acg info: the reader, and the card in its field.
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Json.h"
#include "acg/Output.h"
#include "acg/Text.h"

#include <cstdio>

namespace acg::tool
{

namespace
{

/// The settings as --reader takes them.
std::string SettingsOf(Encoder& encoder)
{
    std::string text = ToUtf8(encoder.Parameters());
    text.erase(0, text.find("Device="));
    for (size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n")) {
        text.replace(at, 2, ";");
    }
    return text;
}

std::string TypeOf(Encoder& encoder)
{
    try {
        return ToUtf8(encoder.ReaderType());
    } catch (const RaisedFailure&) {
        throw CardFailure{*encoder.LastError()};
    }
}

const char* StateOf(Encoder& encoder)
{
    switch (encoder.EncoderState()) {
    case sceClosed:
        return "closed";
    case sceOpened:
        return "opened, no card in the field";
    case sceReady:
        return "ready";
    default:
        return "unknown";
    }
}

void Print(const char* name, const std::string& value)
{
    std::printf("%-12s %s\n", name, value.empty() ? "-" : value.c_str());
}

} // namespace

int Info(const Options& Options)
{
    const auto encoder = MakeEncoder(Options.Parameters);
    ReaderInfo info{.Settings = SettingsOf(*encoder)};
    try {
        Open(*encoder);
        info.ReaderType = TypeOf(*encoder);
        std::wstring serial;
        Must(*encoder, encoder->ReadSerialNumber(serial));
        info.Serial = ToUtf8(serial);
    } catch (const CardFailure& failure) {
        info.Failure = failure.Record;
    }
    info.State = StateOf(*encoder);

    if (Options.Json) {
        std::fputs(Json(info).c_str(), stdout);
    } else {
        Print("Settings", info.Settings);
        Print("Reader type", info.ReaderType);
        Print("State", info.State);
        Print("Serial", info.Serial);
    }
    if (info.Failure) {
        PrintProblem(InWords(*info.Failure));
    }
    return info.Failure ? Failed : Done;
}

} // namespace acg::tool
