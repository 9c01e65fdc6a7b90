// acg info: the reader, and the card in its field.
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WholeCard.h"

#include <exception>
#include <memory>
#include <optional>

namespace acg::tool
{

namespace
{

const char* StateOf(Encoder& encoder)
{
    constexpr const char* States[] = {"unknown", "closed", "opened, no card in the field", "ready"};
    static_assert(sceUnknown == 0 && sceClosed == 1 && sceOpened == 2 && sceReady == 3);
    return States[encoder.EncoderState()];
}

void Show(const char* name, const char* member, const std::string& value, Output& out)
{
    out.Print(Format("%-12s %s", name, value.empty() ? "-" : Printable(value).c_str()));
    out.Json[member] = value.empty() ? JsonObject() : JsonObject(value);
}

struct Options {
    KeyOptions Key;
};

int Info(const Options& options, Context& context)
{
    const KeyRing keys = ReadKeyRing(options.Key);
    const EntryPointLookUp lookUp = LookUpOf(context.Reader);
    const std::shared_ptr<Encoder> encoder =
        MakeEncoder(context.Reader.Parameters, CardWait::FiveSeconds, ReaderDLL(lookUp));
    std::string type;
    std::string serial;
    std::optional<CardSize> size;
    std::exception_ptr failed;
    try {
        Open(*encoder);
        type = TypeOf(*encoder);
        CardSession card(encoder, ReaderDLL(lookUp));
        serial = card.SerialNumber();
        size = FindSize(card, keys, LastSector1K + 1); // more sectors would take too long
    } catch (const CardFailure&) {
        failed = std::current_exception();
    } catch (const OtherFailure&) {
        failed = std::current_exception();
    }
    const LoadedLibrary library = LibraryInUse(lookUp);
    Show("Library", "libraryPath", library.Path, context.Out);
    Show("Description", "libraryDescription", library.Description, context.Out);
    Show("Version", "libraryVersion", library.Version, context.Out);
    Show("Settings", "settings", SettingsOf(*encoder), context.Out);
    Show("Reader type", "readerType", type, context.Out);
    Show("State", "state", StateOf(*encoder), context.Out);
    Show("Serial", "serial", serial, context.Out);
    const std::string unknown = serial.empty() || failed ? "-" : "not known: no key given opens sector 16";
    context.Out.Print(Format("%-12s ", "Size") +
                      (size ? Format("%s, since %s", size->Name(), size->Reason.c_str()) : unknown));
    context.Out.Json["size"] = size ? JsonObject(size->JsonName()) : JsonObject();
    context.Out.Json["sizeReason"] = size ? JsonObject(size->Reason) : JsonObject();
    if (failed) {
        std::rethrow_exception(failed);
    }
    return Done;
}

} // namespace

void AddInfo(CommandLine& commands)
{
    auto [command, options] =
        commands.Add("info", "Shows the reader, its type and state, and the card's serial number and size",
                     "acg info --reader \"Device=com3;Baud rate=19200\"", Info);
    AddKeyRingOptions(command, options.Key);
}

} // namespace acg::tool
