#include "ScriptedReader.h"

#include "acg/platform/AnsiText.h"

namespace acg
{

namespace
{

/// A command and its data text, but for a login's key and the contents of a sector trailer.
std::string WithoutKeys(const std::string& command, std::string_view data)
{
    const int block = std::stoi("0" + std::string(data.substr(0, 2)), nullptr, 16);
    const bool isTrailer = command == "write block" && (block < 128 ? block % 4 == 3 : block % 16 == 15);
    const size_t shown = command == "login" ? 4 : isTrailer ? 2 : data.size();
    return command + ' ' + std::string(data.substr(0, shown));
}

} // namespace

EntryPoint ScriptedReader::Find(ReaderFunction function)
{
    const RunningCode ofTest(/*OfComponent=*/false);
    current = this;
    m_function = NameOf(function);
    const bool isFault = Injected.Hits(++m_calls) && !Injected.Reply;
    if (LibraryMissing || Missing.contains(function) || isFault) {
        return {.LibraryLoaded = !LibraryMissing, .SystemError = MissingError};
    }
    return {.Address = acgreader::FindFunction(function), .LibraryLoaded = true};
}

std::string ScriptedReader::SendCommandGetData(Handle reader, Text command, Text data, Buffer buffer)
{
    const RunningCode ofTest(/*OfComponent=*/false);
    const std::string name(command);
    const std::string shown = WithoutKeys(name, data);
    Commands += (Commands.empty() ? "" : ", ") + shown;
    Sent.insert(name + ' ' + std::string(data));
    EXPECT_TRUE(Replies.contains(name) || IsReplyInjected()) << "unexpected call: " << shown;
    AnswerIn(buffer, "", reader, shown);
    return IsReplyInjected() ? Injected.Reply.value_or("") : Replies[name];
}

void ScriptedReader::Forget()
{
    m_calls = 0;
    Calls.clear();
    Commands.clear();
    Sent.clear();
}

std::ostream& operator<<(std::ostream& out, const CError& record)
{
    return out << record.Number << " \"" << ToAnsi(record.Description) << "\" " << ToAnsi(record.ComFunction)
               << " <- " << ToAnsi(record.RdrCommand) << " [" << ToAnsi(record.RdrRetCode) << "] "
               << record.LastDllError;
}

} // namespace acg

acgreader::ReaderLibrary& acgreader::TheLibrary()
{
    return *acg::ScriptedReader::current;
}
