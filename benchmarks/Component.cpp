// What an operation costs through the component, in each way in which a host calls it. The reader library
// beside it answers at once.
#include "tests/boundary/Client.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace client
{

namespace
{

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

/// The last argument is the variable of the result.
template <class... Formal>
void Measure(_Encoder& encoder, int commands, const Member<_Encoder, Formal...>& member,
             std::type_identity_t<Formal>... arguments)
{
    const double bySlot = TimeOf([&] { return (encoder.*member.Slot)(arguments...); });

    if (*std::get<sizeof...(Formal) - 1>(std::tuple(arguments...)) != sceSuccess) {
        std::puts("an operation failed");
        std::exit(EXIT_FAILURE);
    }
    auto* name = const_cast<LPOLESTR>(member.Name);
    DISPID id = DISPID_UNKNOWN;
    encoder.GetIDsOfNames(IID{}, &name, 1, LOCALE_USER_DEFAULT, &id);
    std::vector<VARIANTARG> given = {AsVariant<Formal>(arguments)...};
    given.pop_back();
    std::reverse(given.begin(), given.end());
    DISPPARAMS list{.rgvarg = given.data(), .cArgs = static_cast<UINT>(given.size())};
    const auto invoke = [&] {
        Variant result;
        return encoder.Invoke(id, IID{}, LOCALE_USER_DEFAULT, Method, &list, &result, nullptr, nullptr);
    };
    const double byName = TimeOf(invoke);

    std::vector<Variant> variables(given.size());
    for (size_t at = 0; at < given.size(); ++at) {
        if (V_VT(&given[at]) != VariantReference) {
            VariantCopyInd(&variables[at], &given[at]);
            given[at] = AsVariant<VARIANT*>(&variables[at]);
        }
    }
    const double asScript = TimeOf(invoke);
    std::printf("%-20ls %8d %11.0f %11.0f %11.0f\n", member.Name, commands, bySlot, byName, asScript);
}

void MeasureAll()
{
    const ComPtr<_Encoder> made = NewEncoder();
    if (made.Get() == nullptr) {
        std::puts("the component isn't registered");
        std::exit(EXIT_FAILURE);
    }
    _Encoder& encoder = *made.Get();
    encoder.ReOpenEncoder();
    const Text key(FactoryKey);
    Text block(L"00112233445566778899AABBCCDDEEFF");
    sceReturnCode result{};
    constexpr unsigned char keyType = 1;
    constexpr LONG blockNumber = 4;
    constexpr int commands = 5;
    std::printf("%-20s %8s %11s %11s %11s\n", "operation", "commands", "by slot ns", "by name ns",
                "script ns");
    Measure(encoder, commands, ReadDataBloc, blockNumber, key, keyType, block.Variable(), &result);
    Measure(encoder, commands, WriteDataBloc, blockNumber, key, keyType, block.Variable(), &result);
    unsigned char keysUsed = 0;
    unsigned char bx = 0;
    SCBS_SecurityLevelEnum level{};
    SCSS_SecurityLevelEnum ofTrailer{};
    Measure(encoder, commands, ReadSectorTrailer, 1, key, keyType, &keysUsed, &level, &level, &level,
            &ofTrailer, &bx, &result);
    Variant userByte(VT_UI1, 0x69);
    Measure(encoder, 3 * commands, WriteSectorTrailer, 1, key, keyType, key, key, 1, scbs_A_ReadWrite,
            scbs_A_ReadWrite, scbs_A_ReadWrite, scss_A_WriteKeysConditions, &userByte, &result);
    // Last, as each call makes the list of value blocks longer.
    Measure(encoder, commands, WriteValueBloc, blockNumber, key, keyType, 1000, &result);
}

} // namespace

} // namespace client

int main()
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    client::MeasureAll();
}
