#include "benchmarks/Library.h"

#include "simulator/ByteString.h"

using acg::ReaderHandle;

ReaderHandle ACG_READER_CALL OpenComm(const char* /*Device*/, uint8_t /*Autodetect*/,
                                      acg::CommSettings* /*Settings*/)
{
    return 1;
}

int32_t ACG_READER_CALL SetCommTimeout(ReaderHandle /*Comm*/, int32_t /*Timeout*/)
{
    return 0;
}

int32_t ACG_READER_CALL SetCommProtocol(ReaderHandle /*Comm*/, uint8_t /*Protocol*/)
{
    return 0;
}

char* ACG_READER_CALL DetectReader(ReaderHandle /*Comm*/, char* /*Buffer*/)
{
    return simulator::NewByteString("A");
}

ReaderHandle ACG_READER_CALL OpenReader(ReaderHandle /*Comm*/, uint8_t /*ReaderId*/, int32_t /*Third*/)
{
    return 1;
}

char* ACG_READER_CALL GetReaderType(ReaderHandle /*Reader*/, char* /*Buffer*/)
{
    return simulator::NewByteString("MultiISO 2.5");
}

char* ACG_READER_CALL SendCommandGetData(ReaderHandle /*Reader*/, const char* Command, const char* Data,
                                         char* /*Buffer*/)
{
    if (Noted != nullptr) {
        Noted->push_back(std::string(Command) + '|' + Data);
    }
    switch (Command[0]) {
    case 's': // select
        return simulator::NewByteString("04A1B2C3");
    case 'l': // login: the letter and its NUL
        return simulator::NewByteString({"L\0", 2});
    case 'r': // read block
    case 'w': // write block, write vblock
        return simulator::NewByteString("000000000000FF078069FFFFFFFFFFFF");
    default:
        return simulator::NewByteString("");
    }
}

int32_t ACG_READER_CALL CloseReader(ReaderHandle /*Reader*/)
{
    return 0;
}

int32_t ACG_READER_CALL CloseComm(ReaderHandle /*Comm*/)
{
    return 0;
}
