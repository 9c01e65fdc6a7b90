#include "ScriptedReader.h"

#include "platform/AnsiText.h"

#include <algorithm>

namespace acg
{

namespace
{

/// Stars for the digits of keys: behind the key type of a login, and at both ends of a sector trailer.
std::string MaskKeys(const std::string& command, std::string data)
{
    const int block = std::stoi("0" + data.substr(0, 2), nullptr, 16);
    const bool isTrailer = command == "write block" && (block < 128 ? block % 4 == 3 : block % 16 == 15);
    for (size_t at = 2; at < data.size(); ++at) {
        if (command == "login" ? at >= 4 : isTrailer && (at < 14 || at >= 22)) {
            data[at] = '*';
        }
    }
    return data;
}

} // namespace

ReaderDLL ScriptedReader::DLL()
{
    return ReaderDLL([this](ReaderFunction function) { return Find(function); });
}

EntryPoint ScriptedReader::Find(ReaderFunction function)
{
    const RunningCode ofTest(/*OfComponent=*/false);
    current = this;
    m_function = Name(function);
    const bool isFault = Injected.Hits(++m_calls) && !Injected.Reply;
    if (LibraryMissing || Missing.contains(function) || isFault) {
        return {.LibraryLoaded = !LibraryMissing, .SystemError = MissingError};
    }
    return {.Address = exports::FindFunction(m_function), .LibraryLoaded = true};
}

std::string ScriptedReader::SendCommandGetData(Handle reader, Text command, Text data, Buffer buffer)
{
    const RunningCode ofTest(/*OfComponent=*/false);
    const std::string sent(command);
    const std::string masked = MaskKeys(sent, std::string(data));
    m_sent.push_back(sent + ' ' + std::string(data));
    AnswerIn(buffer, "", reader, sent, masked);
    if (Injected.Reply && Injected.Hits(m_calls)) {
        return *Injected.Reply;
    }
    EXPECT_TRUE(Replies.contains(sent)) << "unexpected call: " << sent << ' ' << masked;
    return Replies[sent];
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
    for (std::string call : Calls) {
        if (call.starts_with("SendCommandGetData")) {
            call.erase(0, call.find(' ', call.find(' ') + 1) + 1); // the function and the handle
            commands += (commands.empty() ? "" : ", ") + call;
        }
    }
    return commands;
}

bool ScriptedReader::WasSent(const std::string& Command, const std::string& Data) const
{
    return std::ranges::count(m_sent, Command + ' ' + Data) != 0;
}

CError Clean(std::wstring_view ComFunction)
{
    return {.ComFunction = std::wstring(ComFunction)};
}

CError CallFailed(std::wstring_view Function, std::wstring_view ComFunction, std::wstring_view RdrCommand)
{
    CError record = Clean(ComFunction);
    record.Number = 453;
    record.Description = L"Can't find entry point " + std::wstring(Function) + L" in ACGReader330";
    record.RdrCommand = RdrCommand;
    record.LastDllError = ScriptedReader::MissingError;
    return record;
}

std::ostream& operator<<(std::ostream& out, const CError& record)
{
    return out << record.Number << " \"" << ToAnsi(record.Description) << "\" " << ToAnsi(record.ComFunction)
               << " <- " << ToAnsi(record.RdrCommand) << " [" << ToAnsi(record.RdrRetCode) << "] "
               << record.LastDllError;
}

int32_t EncoderTest::DrawHandle()
{
    const std::wstring information = encoder.GetInformation();
    return std::stoi(information.substr(information.find(L"|1|") + 3));
}

void EncoderTest::Open()
{
    ASSERT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    reader.Forget();
}

} // namespace acg

exports::ReaderLibrary& exports::TheLibrary()
{
    return *acg::ScriptedReader::current;
}
