// How the functions of the reader library are called: __stdcall on Windows, as the system's C elsewhere.
#pragma once

#ifdef _WIN32
#define ACG_READER_CALL __stdcall
#else
#define ACG_READER_CALL
#endif
