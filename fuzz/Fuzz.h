// What the fuzz targets share. An input is texts from its front, each up to a backslash and the character
// behind that, and numbers from its end. So a seed is lines that end in a backslash, then letters, the first
// one last. What libFuzzer shows of an input that fails is made up, its keys too.
#pragma once

#undef NDEBUG
#include "encoder/Encoder.h"
#include "platform/AnsiText.h"
#include "simulator/ByteString.h"

#include <cassert>
#include <fuzzer/FuzzedDataProvider.h>

namespace fuzz
{

/// More time goes by between two looks than OpenEncoder waits.
inline const auto JumpingClock = [] {
    static std::chrono::steady_clock::time_point now;
    return now += std::chrono::seconds(6);
};

/// A reader library that the target answers for, numbers by a digit. It lacks what only the test dialog
/// calls.
struct Library {
    using Handle = acg::ReaderHandle;
    static inline std::function<std::string(Handle, std::string_view Command, const char* Data)> Answer;

    static char* Send(Handle handle, const char* command, const char* data, char* /*buffer*/)
    {
        return simulator::NewByteString(Answer(handle, command, data));
    }
    static char* Text(Handle handle, char* buffer) { return Send(handle, "", "", buffer); }
    template <class Result, class... Others>
    static Result Number(Handle handle, Others...)
    {
        return static_cast<Result>(std::atoi(Answer(handle, "", "").substr(0, 1).c_str()));
    }
    static Handle OpenComm(const char*, uint8_t, acg::CommSettings*) { return Number<Handle>(0); }

    static acg::EntryPoint Find(acg::ReaderFunction function)
    {
        constexpr auto at = [](auto* address) { return reinterpret_cast<void (*)()>(address); };
        void (*const functions[acg::ReaderFunctionCount])() = {at(OpenComm),
                                                               at(Number<int32_t, int32_t>),
                                                               at(Number<int32_t, uint8_t>),
                                                               nullptr,
                                                               nullptr,
                                                               nullptr,
                                                               at(Text),
                                                               at(Number<Handle, uint8_t, int32_t>),
                                                               at(Text),
                                                               nullptr,
                                                               at(Send),
                                                               at(Number<int32_t>),
                                                               at(Number<int32_t>)};
        return {.Address = functions[static_cast<size_t>(function)], .LibraryLoaded = true};
    }
};

} // namespace fuzz
