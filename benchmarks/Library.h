// A reader library that answers at once: every handle is 1, and there is a new card. It lacks what the test
// dialog alone calls.
#pragma once

#include "reader/ReaderCall.h"
#include "reader/ReaderDLL.h"

#include <string>
#include <vector>

/// Where the commands go with their data, as "command|data"; nowhere if null.
inline std::vector<std::string>* Noted = nullptr;

extern "C" {
acg::ReaderHandle ACG_READER_CALL OpenComm(const char* Device, uint8_t Autodetect,
                                           acg::CommSettings* Settings);
int32_t ACG_READER_CALL SetCommTimeout(acg::ReaderHandle Comm, int32_t Timeout);
int32_t ACG_READER_CALL SetCommProtocol(acg::ReaderHandle Comm, uint8_t Protocol);
char* ACG_READER_CALL DetectReader(acg::ReaderHandle Comm, char* Buffer);
acg::ReaderHandle ACG_READER_CALL OpenReader(acg::ReaderHandle Comm, uint8_t ReaderId, int32_t Third);
char* ACG_READER_CALL GetReaderType(acg::ReaderHandle Reader, char* Buffer);
char* ACG_READER_CALL SendCommandGetData(acg::ReaderHandle Reader, const char* Command, const char* Data,
                                         char* Buffer);
int32_t ACG_READER_CALL CloseReader(acg::ReaderHandle Reader);
int32_t ACG_READER_CALL CloseComm(acg::ReaderHandle Comm);
}
