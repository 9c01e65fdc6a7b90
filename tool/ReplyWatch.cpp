#include "tool/ReplyWatch.h"

#include "abi/ACGReader330.h"
#include "acg/cards/BlockText.h"
#include "acg/platform/AnsiText.h"

#include <string_view>

namespace acg::tool
{

namespace
{

EntryPoint::Function sendCommand = nullptr; ///< the library's own
bool wasWhole = true;

char* ACG_READER_CALL SendAndLook(acgreader::Handle reader, const char* command, const char* data,
                                  char* buffer)
{
    ByteString reply(
        reinterpret_cast<decltype(&::SendCommandGetData)>(sendCommand)(reader, command, data, buffer));
    if (command == std::string_view("read block")) {
        const std::string_view bytes = reply.Bytes().substr(0, reply.Bytes().find('\0'));
        const bool isLetter = bytes.size() == 1 && reply.Bytes().size() > 1;
        wasWhole = bytes.size() == BlockDigits || isLetter;
    }
    return reply.Release();
}

} // namespace

ReaderDLL WatchedLibrary()
{
    return ReaderDLL([](ReaderFunction function) {
        EntryPoint entry = FindInLibrary(function);
        if (function == ReaderFunction::SendCommandGetData && entry.Address != nullptr) {
            sendCommand = entry.Address;
            entry.Address = reinterpret_cast<EntryPoint::Function>(SendAndLook);
        }
        return entry;
    });
}

bool WasWholeBlock()
{
    return wasWhole;
}

} // namespace acg::tool
