#include "ScriptedReader.h"

#include "platform/AnsiText.h"
#include "reader/ReaderCall.h"
#include "simulator/ByteString.h"

#include <algorithm>
#include <sstream>

namespace acg
{

namespace
{

ScriptedReader* current = nullptr;

template <class... Parts>
void Log(ReaderFunction function, const Parts&... parts)
{
    std::ostringstream line;
    line << Name(function);
    ((line << ' ' << parts), ...);
    current->Calls.push_back(line.str());
}

/// Stars for the digits of keys: behind the key type of a login, and at both ends of a sector trailer.
std::string MaskKeys(const std::string& command, std::string data)
{
    const auto mask = [&data](size_t from, size_t count) {
        if (from < data.size()) {
            count = std::min(count, data.size() - from);
            data.replace(from, count, count, '*');
        }
    };
    if (command == "login") {
        mask(4, data.size());
    }
    const int block = std::stoi("0" + data.substr(0, 2), nullptr, 16);
    const bool isTrailer = block < 128 ? block % 4 == 3 : block % 16 == 15;
    if (command == "write block" && isTrailer) {
        mask(2, 12);
        mask(22, 12);
    }
    return data;
}

} // namespace

struct ScriptedFunctions {
    /// A function that takes numbers and gives one that never changes.
    template <ReaderFunction Function, int Answer, class Result, class... Numbers>
    static Result ACG_READER_CALL Number(Numbers... numbers)
    {
        const Turn script(/*OfComponent=*/false);
        Log(Function, int64_t{numbers}...);
        return Result{Answer};
    }
    static ReaderHandle ACG_READER_CALL OpenComm(const char* device, uint8_t autodetect,
                                                 CommSettings* settings)
    {
        const Turn script(/*OfComponent=*/false);
        Log(ReaderFunction::OpenComm, device, int{autodetect}, settings->BaudRate, int{settings->Protocol});
        settings->BaudRate = -1; // nobody reads it
        return current->FaultReply() == nullptr ? current->Comm : 0;
    }
    static ReaderHandle ACG_READER_CALL OpenReader(ReaderHandle comm, uint8_t id, int32_t third)
    {
        const Turn script(/*OfComponent=*/false);
        Log(ReaderFunction::OpenReader, comm, int{id}, third);
        return current->FaultReply() == nullptr ? current->Reader : 0;
    }
    static char* ACG_READER_CALL DetectReader(ReaderHandle comm, char* buffer)
    {
        const Turn script(/*OfComponent=*/false);
        Log(ReaderFunction::DetectReader, comm);
        return Text(current->FaultReply() == nullptr ? current->Readers : "", buffer, 256);
    }
    static char* ACG_READER_CALL GetReaderType(ReaderHandle reader, char* buffer)
    {
        const Turn script(/*OfComponent=*/false);
        Log(ReaderFunction::GetReaderType, reader);
        return Text(current->FaultReply() == nullptr ? current->Type : "", buffer, 100);
    }
    static char* ACG_READER_CALL GetDeviceID(ReaderHandle reader, char* buffer)
    {
        const Turn script(/*OfComponent=*/false);
        Log(ReaderFunction::GetDeviceID, reader);
        return Text(current->DeviceID, buffer, 20);
    }
    static char* ACG_READER_CALL SendCommandGetData(ReaderHandle reader, const char* command,
                                                    const char* data, char* buffer)
    {
        const Turn script(/*OfComponent=*/false);
        Log(ReaderFunction::SendCommandGetData, reader, command, MaskKeys(command, data));
        return Text(current->Answer(command, data), buffer, 512);
    }

    static EntryPoint::Function Address(ReaderFunction function)
    {
        using enum ReaderFunction;
        switch (function) {
        case OpenComm:
            return Plain(ScriptedFunctions::OpenComm);
        case SetCommTimeout:
            return Plain(Number<SetCommTimeout, 0, int32_t, ReaderHandle, int32_t>);
        case SetCommProtocol:
            return Plain(Number<SetCommProtocol, 0, int32_t, ReaderHandle, uint8_t>);
        case GetCommProtocol:
            return Plain(Number<GetCommProtocol, 1, uint8_t, ReaderHandle>);
        case GetCommBaudRate:
            return Plain(Number<GetCommBaudRate, 57600, int32_t, ReaderHandle>);
        case GetCommTimeout:
            return Plain(Number<GetCommTimeout, 1234, int32_t, ReaderHandle>);
        case DetectReader:
            return Plain(ScriptedFunctions::DetectReader);
        case OpenReader:
            return Plain(ScriptedFunctions::OpenReader);
        case GetReaderType:
            return Plain(ScriptedFunctions::GetReaderType);
        case GetDeviceID:
            return Plain(ScriptedFunctions::GetDeviceID);
        case SendCommandGetData:
            return Plain(ScriptedFunctions::SendCommandGetData);
        case CloseReader:
            return Plain(Number<CloseReader, 0, int32_t, ReaderHandle>);
        case CloseComm:
            return Plain(Number<CloseComm, 0, int32_t, ReaderHandle>);
        }
        return nullptr;
    }

private:
    template <class Signature>
    static EntryPoint::Function Plain(Signature* function)
    {
        return reinterpret_cast<EntryPoint::Function>(function);
    }
    /// Gives the text, and uses the whole buffer, as a library may.
    static char* Text(const std::string& text, char* buffer, size_t characters)
    {
        EXPECT_EQ(std::string(buffer, characters + 1), std::string(characters + 1, '\0'));
        std::fill_n(buffer, characters, 'z');
        return simulator::NewByteString(text);
    }
};

ScriptedReader::ScriptedReader()
{
    current = this;
}

ScriptedReader::~ScriptedReader()
{
    current = nullptr;
}

ReaderDLL ScriptedReader::DLL()
{
    return ReaderDLL([this](ReaderFunction function) { return Find(function); });
}

EntryPoint ScriptedReader::Find(ReaderFunction function)
{
    const Turn script(/*OfComponent=*/false);
    EntryPoint entry;
    entry.LibraryLoaded = !LibraryMissing;
    const bool isFault = Injected.Hits(++m_calls) && !Injected.Reply;
    if (LibraryMissing || Missing.contains(function) || isFault) {
        entry.SystemError = MissingError;
    } else {
        entry.Address = ScriptedFunctions::Address(function);
    }
    return entry;
}

std::string ScriptedReader::Answer(const std::string& command, const std::string& data)
{
    m_sent.emplace_back(command, data);
    if (const std::string* const reply = FaultReply()) {
        return *reply;
    }
    EXPECT_TRUE(Replies.contains(command))
        << "unexpected call: " << command << ' ' << MaskKeys(command, data);
    return Replies[command];
}

const std::string* ScriptedReader::FaultReply() const
{
    return Injected.Reply && Injected.Hits(m_calls) ? &*Injected.Reply : nullptr;
}

void ScriptedReader::Forget()
{
    m_calls = 0;
    Calls.clear();
    m_sent.clear();
}

std::string ScriptedReader::Commands() const
{
    std::string commands;
    for (const auto& [command, data] : m_sent) {
        commands += (commands.empty() ? "" : ", ") + command + " " + MaskKeys(command, data);
    }
    return commands;
}

bool ScriptedReader::WasSent(const std::string& Command, const std::string& Data) const
{
    return std::ranges::find(m_sent, std::pair(Command, Data)) != m_sent.end();
}

Record Clean(std::wstring_view ComFunction)
{
    return {.ComFunction = std::wstring(ComFunction)};
}

Record CallFailed(std::wstring_view Function, std::wstring_view ComFunction, std::wstring_view RdrCommand)
{
    return {453,
            L"Can't find entry point " + std::wstring(Function) + L" in ACGReader330",
            std::wstring(ComFunction),
            std::wstring(RdrCommand),
            L"",
            ScriptedReader::MissingError};
}

std::ostream& operator<<(std::ostream& out, const Record& record)
{
    return out << record.Number << " \"" << ToAnsi(record.Description) << "\" " << ToAnsi(record.ComFunction)
               << " <- " << ToAnsi(record.RdrCommand) << " [" << ToAnsi(record.RdrRetCode) << "] "
               << record.LastDllError;
}

int32_t EncoderTest::DrawHandle()
{
    const std::wstring information = encoder.GetInformation();
    const std::wstring untilNumber = information.substr(0, information.rfind(L'|'));
    return std::stoi(untilNumber.substr(untilNumber.rfind(L'|') + 1));
}

void EncoderTest::Open()
{
    ASSERT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    reader.Forget();
}

Record EncoderTest::Last()
{
    const CError& last = *encoder.LastError();
    return {last.Number,     last.Description, last.ComFunction,
            last.RdrCommand, last.RdrRetCode,  last.LastDllError};
}

} // namespace acg
