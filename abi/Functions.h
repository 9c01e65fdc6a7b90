// The thirteen functions as they are exported. A library that passes calls on takes their types from here.
#pragma once

#include "abi/ReaderLibrary.h"

#ifdef _WIN32
#define READER_CALL __stdcall
#else
#define READER_CALL
#endif

extern "C" {

exports::ReaderLibrary::Handle READER_CALL OpenComm(const char* Device, uint8_t Autodetect,
                                                    exports::CommSettings* Settings);
int32_t READER_CALL SetCommTimeout(exports::ReaderLibrary::Handle Comm, int32_t Timeout);
int32_t READER_CALL SetCommProtocol(exports::ReaderLibrary::Handle Comm, uint8_t Protocol);
uint8_t READER_CALL GetCommProtocol(exports::ReaderLibrary::Handle Comm);
int32_t READER_CALL GetCommBaudRate(exports::ReaderLibrary::Handle Comm);
int32_t READER_CALL GetCommTimeout(exports::ReaderLibrary::Handle Comm);
char* READER_CALL DetectReader(exports::ReaderLibrary::Handle Comm, char* Buffer);
exports::ReaderLibrary::Handle READER_CALL OpenReader(exports::ReaderLibrary::Handle Comm, uint8_t Id,
                                                      int32_t Third);
char* READER_CALL GetReaderType(exports::ReaderLibrary::Handle Reader, char* Buffer);
char* READER_CALL GetDeviceID(exports::ReaderLibrary::Handle Reader, char* Buffer);
char* READER_CALL SendCommandGetData(exports::ReaderLibrary::Handle Reader, const char* Command,
                                     const char* Data, char* Buffer);
int32_t READER_CALL CloseReader(exports::ReaderLibrary::Handle Reader);
int32_t READER_CALL CloseComm(exports::ReaderLibrary::Handle Comm);

} // extern "C"
