// What an operation costs through the Encoder, beside the bare calls of the reader library that it makes. The
// library answers at once.
//
// A bare call is what whoever holds wide text has to do: the command and its data become 8-bit, a buffer of
// NULs is prepared, the function is called, the reply becomes wide, and the byte string is freed. The wide
// texts are ready beforehand. A bare call looks at no reply, keeps no record, looks no function up, and wipes
// nothing. The library's own side costs both the same, which brings the ratio nearer to 1 and leaves the
// difference alone.
#include "abi/ReaderLibrary.h"
#include "acg/encoder/Encoder.h"
#include "acg/platform/AnsiText.h"
#include "benchmarks/Library.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using acg::EntryPoint;
using acg::ReaderFunction;

/// As in a loaded library, where each function is looked up by name once.
EntryPoint Find(ReaderFunction function)
{
    return {.Address = acgreader::FindFunction(function), .LibraryLoaded = true};
}

// The bare calls, by pointers as a host of a loaded library has them.

template <ReaderFunction function>
acgreader::Pointer<function> PointerTo()
{
    return reinterpret_cast<acgreader::Pointer<function>>(acgreader::FindFunction(function));
}

struct Exchange {
    std::wstring Command;
    std::wstring Data;
};

std::wstring TakeReply(char* bytes)
{
    uint32_t length = 0;
    std::memcpy(&length, bytes - sizeof length, sizeof length);
    std::wstring reply = acg::FromAnsi({bytes, length});
    std::free(bytes - sizeof length);
    return reply;
}

void CallBare(const std::vector<Exchange>& exchanges)
{
    static const auto send = PointerTo<ReaderFunction::SendCommandGetData>();
    static const auto getType = PointerTo<ReaderFunction::GetReaderType>();
    for (const Exchange& exchange : exchanges) {
        const std::string command = acg::ToAnsi(exchange.Command);
        const std::string data = acg::ToAnsi(exchange.Data);
        char buffer[512 + 1] = {};
        benchmark::DoNotOptimize(buffer);
        benchmark::DoNotOptimize(TakeReply(send(1, command.c_str(), data.c_str(), buffer)));
        if (exchange.Command == L"select") { // the Encoder then queries the reader's type
            char typeBuffer[100 + 1] = {};
            benchmark::DoNotOptimize(typeBuffer);
            benchmark::DoNotOptimize(TakeReply(getType(1, typeBuffer)));
        }
    }
}

// The operations.

constexpr std::wstring_view Key = L"FFFFFFFFFFFF";
const std::wstring Block = L"00112233445566778899AABBCCDDEEFF";

struct Operation {
    const char* Name;
    acg::sceReturnCode (*Run)(acg::Encoder&);
};

const Operation Operations[] = {
    {"ReadDataBloc",
     [](acg::Encoder& encoder) {
         std::wstring contents;
         return encoder.ReadDataBloc(4, Key, acg::KeyTypeA, contents);
     }},
    {"WriteDataBloc",
     [](acg::Encoder& encoder) {
         std::wstring contents = Block;
         return encoder.WriteDataBloc(4, Key, acg::KeyTypeA, contents);
     }},
    {"WriteValueBloc",
     [](acg::Encoder& encoder) { return encoder.WriteValueBloc(4, Key, acg::KeyTypeA, /*value=*/1000); }},
    {"ReadSectorTrailer",
     [](acg::Encoder& encoder) {
         uint8_t keysUsed = 0;
         uint8_t bx = 0;
         acg::SCBS_SecurityLevelEnum level{};
         acg::SCSS_SecurityLevelEnum ofTrailer{};
         return encoder.ReadSectorTrailer(1, Key, acg::KeyTypeA, keysUsed, level, level, level, ofTrailer,
                                          bx);
     }},
    {"WriteSectorTrailer",
     [](acg::Encoder& encoder) {
         return encoder.WriteSectorTrailer(1, Key, acg::KeyTypeA, Key, Key, acg::KeyAAlone,
                                           acg::SCBS_SecurityLevelEnum{15}, acg::SCBS_SecurityLevelEnum{15},
                                           acg::SCBS_SecurityLevelEnum{15}, acg::SCSS_SecurityLevelEnum{3});
     }},
};

/// The commands that the operation sends.
std::vector<Exchange> ExchangesOf(const Operation& operation, acg::Encoder& encoder)
{
    std::vector<std::string> sent;
    Noted = &sent;
    if (operation.Run(encoder) != acg::sceSuccess) {
        std::fprintf(stderr, "%s failed\n", operation.Name);
        std::exit(1);
    }
    Noted = nullptr;
    std::vector<Exchange> exchanges;
    for (const std::string& line : sent) {
        const size_t bar = line.find('|');
        exchanges.push_back({acg::FromAnsi(line.substr(0, bar)), acg::FromAnsi(line.substr(bar + 1))});
    }
    return exchanges;
}

/// Keeps the median of each benchmark, in nanoseconds.
class Medians : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                m_times[run.run_name.function_name] = run.GetAdjustedCPUTime();
            }
        }
    }
    [[nodiscard]] double Of(const std::string& name) const { return m_times.at(name); }

private:
    std::map<std::string, double> m_times;
};

/// What a serial line takes for the bytes: a start bit, 8 bits and a stop bit each.
double LineMicroseconds(int bytes, int baud)
{
    constexpr int BitsPerByte = 10;
    return bytes * BitsPerByte * 1e6 / baud;
}

} // namespace

int main(int count, char** arguments)
{
    benchmark::Initialize(&count, arguments);
    acg::Encoder encoder(acg::ReaderDLL(Find), std::chrono::steady_clock::now);
    encoder.ReOpenEncoder();
    std::map<std::string, std::vector<Exchange>> exchanges;
    for (const Operation& operation : Operations) {
        const auto& sent = exchanges[operation.Name] = ExchangesOf(operation, encoder);
        benchmark::RegisterBenchmark((operation.Name + std::string("/encoder")).c_str(), [&](auto& state) {
            encoder.ReOpenEncoder(); // without the list of value blocks from the benchmark before
            while (state.KeepRunning()) {
                benchmark::DoNotOptimize(operation.Run(encoder));
            }
        });
        benchmark::RegisterBenchmark((operation.Name + std::string("/bare")).c_str(), [&](auto& state) {
            while (state.KeepRunning()) {
                CallBare(sent);
            }
        });
    }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);

    double worst = 0;
    std::printf("%-20s %8s %11s %8s %6s %22s\n", "operation", "commands", "encoder ns", "bare ns", "ratio",
                "difference/command ns");
    for (const Operation& operation : Operations) {
        const std::string name = operation.Name;
        const auto commands = exchanges[name].size();
        const double encoderTime = medians.Of(name + "/encoder");
        const double bareTime = medians.Of(name + "/bare");
        const double ratio = encoderTime / bareTime;
        worst = std::max(worst, ratio);
        std::printf("%-20s %8zu %11.0f %8.0f %6.2f %22.0f\n", name.c_str(), commands, encoderTime, bareTime,
                    ratio, (encoderTime - bareTime) / static_cast<double>(commands));
    }
    constexpr int ExchangeBytes = 40;
    std::printf("an exchange of %d bytes takes the line %.0f us at 9600 baud, %.0f us at 115200 baud\n",
                ExchangeBytes, LineMicroseconds(ExchangeBytes, 9600),
                LineMicroseconds(ExchangeBytes, 115200));
    std::printf("worst ratio: %.2f\n", worst);
    return 0;
}
