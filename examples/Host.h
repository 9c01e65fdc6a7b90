// What the example hosts have in common: the keys, the number that opens an encoder, and what a failure
// shows.
#pragma once

#include "acg/encoder/Encoder.h"

#include <cstdio>
#include <cstdlib>
#include <string>

inline const std::wstring FactoryKey = L"FFFFFFFFFFFF";
inline const std::wstring KeyA = L"A0A1A2A3A4A5";
inline const std::wstring KeyB = L"B0B1B2B3B4B5";

/// The fifth field of the information text: the number that OpenEncoder asks for.
inline int32_t HandleNumber(const std::wstring& information)
{
    size_t from = 0;
    for (int field = 1; field < 5; ++field) {
        from = information.find(L'|', from) + 1;
    }
    return static_cast<int32_t>(std::stol(information.substr(from)));
}

inline void ShowRecord(acg::Encoder& encoder)
{
    const auto record = encoder.LastError();
    std::printf("  Number         %d\n", record->Number);
    std::printf("  Description    %ls\n", record->Description.c_str());
    std::printf("  LastDllError   %d\n", record->LastDllError);
    std::printf("  ComFunction    %ls\n", record->ComFunction.c_str());
    std::printf("  RdrCommand     %ls\n", record->RdrCommand.c_str());
    std::printf("  RdrRetCode     %ls\n", record->RdrRetCode.c_str());
}

/// Ends the program if a step failed.
inline void MustSucceed(acg::Encoder& encoder, acg::sceReturnCode result)
{
    if (result != acg::sceSuccess) {
        std::printf("%ls failed:\n", encoder.LastError()->ComFunction.c_str());
        ShowRecord(encoder);
        encoder.CloseEncoder();
        std::exit(EXIT_FAILURE);
    }
}
