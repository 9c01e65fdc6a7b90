#include "benchmarks/Library.h"

#include "abi/ReaderLibrary.h"

namespace
{

class AnsweringLibrary final : public acgreader::ReaderLibrary
{
    Handle OpenComm(Text /*device*/, uint8_t /*autodetect*/, acgreader::CommSettings& /*settings*/) override
    {
        return 1;
    }
    std::string DetectReader(Handle /*comm*/, Buffer /*buffer*/) override { return "A"; }
    Handle OpenReader(Handle /*comm*/, uint8_t /*id*/, int32_t /*third*/) override { return 1; }
    std::string GetReaderType(Handle /*reader*/, Buffer /*buffer*/) override { return "MultiISO 2.5"; }
    std::string SendCommandGetData(Handle /*reader*/, Text command, Text data, Buffer /*buffer*/) override
    {
        if (Noted != nullptr) {
            Noted->push_back(std::string(command) + '|' + std::string(data));
        }
        switch (command.front()) {
        case 's': // select
            return "04A1B2C3";
        case 'l': // login: the letter and its NUL
            return {"L\0", 2};
        case 'r': // read block
        case 'w': // write block, write vblock
            return "000000000000FF078069FFFFFFFFFFFF";
        default:
            return "";
        }
    }
};

} // namespace

acgreader::ReaderLibrary& acgreader::TheLibrary()
{
    static constinit AnsweringLibrary library;
    return library;
}
