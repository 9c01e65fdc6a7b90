// What an operation costs through the component, in each way in which a host calls it. The reader library
// beside it answers at once.
#include "tests/acg/boundary/Client.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace client
{

namespace
{

constexpr const wchar_t* FactoryKey = L"FFFFFFFFFFFF";
constexpr int Calls = 20000;
constexpr int Rounds = 9;

/// The time of one call in nanoseconds: the median of the rounds.
template <class Call>
double TimeOf(const Call& call)
{
    std::array<double, Rounds> times{};
    for (double& time : times) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < Calls; ++i) {
            if (call() != S_OK) {
                std::puts("a call failed");
                std::exit(EXIT_FAILURE);
            }
        }
        const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
        time = taken.count() / Calls;
    }
    std::nth_element(times.begin(), times.begin() + Rounds / 2, times.end());
    return times[Rounds / 2];
}

/// By slot as a compiler makes the call; by name as Call does.
template <class BySlot>
void Measure(_Encoder& encoder, int commands, const wchar_t* name, const BySlot& callBySlot,
             const std::vector<_variant_t>& arguments)
{
    sceReturnCode result = sceError;
    const double bySlot = TimeOf([&] { return callBySlot(&result); });
    if (result != sceSuccess) {
        std::puts("an operation failed");
        std::exit(EXIT_FAILURE);
    }
    Call named(Way::ByName, encoder, name, arguments);
    const double byName = TimeOf([&] { return named.Repeat(); });
    Call script(Way::AsScript, encoder, name, arguments);
    for (size_t at = 0; at < arguments.size(); ++at) { // a variable has its type after the first call
        script.Arguments[at] = named.Arguments[at];
    }
    const double asScript = TimeOf([&] { return script.Repeat(); });
    std::printf("%-20ls %8d %11.0f %11.0f %11.0f %11.2f\n", name, commands, bySlot, byName, asScript,
                byName / bySlot);
}

void MeasureAll()
{
    Ptr<_Encoder> made;
    if (FAILED(made.CreateInstance(__uuidof(Encoder)))) {
        std::puts("the component isn't registered");
        std::exit(EXIT_FAILURE);
    }
    _Encoder& encoder = *made;
    encoder.ReOpenEncoder();
    const _bstr_t key(FactoryKey);
    const _bstr_t contents(L"00112233445566778899AABBCCDDEEFF");
    BSTR block = contents.copy();
    constexpr LONG keyType = 1;
    constexpr LONG blockNumber = 4;
    constexpr int commands = 5;
    const std::vector<_variant_t> ofBlock = {blockNumber, FactoryKey, keyType, contents};
    std::printf("%-20s %8s %11s %11s %11s %11s\n", "operation", "commands", "by slot ns", "by name ns",
                "script ns", "name/slot");
    const auto read = [&](auto* result) {
        return encoder.ReadDataBloc(blockNumber, key, keyType, &block, result);
    };
    Measure(encoder, commands, L"ReadDataBloc", read, ofBlock);
    const auto write = [&](auto* result) {
        return encoder.WriteDataBloc(blockNumber, key, keyType, &block, result);
    };
    Measure(encoder, commands, L"WriteDataBloc", write, ofBlock);
    unsigned char byte = 0;
    SCBS_SecurityLevelEnum level{};
    SCSS_SecurityLevelEnum ofTrailer{};
    const auto readTrailer = [&](auto* result) {
        return encoder.ReadSectorTrailer(1, key, keyType, &byte, &level, &level, &level, &ofTrailer, &byte,
                                         result);
    };
    Measure(encoder, commands, L"ReadSectorTrailer", readTrailer,
            {1L, FactoryKey, keyType, 0L, 0L, 0L, 0L, 0L, 0L});
    constexpr LONG all = scbs_A_ReadWrite;
    constexpr LONG allOfTrailer = scss_A_WriteKeysConditions;
    _variant_t userByte(BYTE(0x69));
    const auto writeTrailer = [&](auto* result) {
        return encoder.WriteSectorTrailer(1, key, keyType, key, key, 1, scbs_A_ReadWrite, scbs_A_ReadWrite,
                                          scbs_A_ReadWrite, scss_A_WriteKeysConditions, &userByte, result);
    };
    Measure(encoder, 3 * commands, L"WriteSectorTrailer", writeTrailer,
            {1L, FactoryKey, keyType, FactoryKey, FactoryKey, 1L, all, all, all, allOfTrailer, userByte});
    // Last, as each call makes the list of value blocks longer.
    const auto writeValue = [&](auto* result) {
        return encoder.WriteValueBloc(blockNumber, key, keyType, 1000, result);
    };
    Measure(encoder, commands, L"WriteValueBloc", writeValue, {blockNumber, FactoryKey, keyType, 1000L});
    SysFreeString(block);
}

} // namespace

} // namespace client

int main()
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    client::MeasureAll();
}
