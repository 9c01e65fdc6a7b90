// The public operations, and an encoder that lives through what happens to them.
#pragma once

#include "tests/acg/cards/CardTest.h"

#include <functional>

namespace acg
{

/// Every key that an operation is given. A trailer that is read holds it twice.
inline constexpr const wchar_t* FaultKey = L"D1ce0fCA57e5";
inline constexpr const char* ReadReply = "D1CE0FCA57E5FF078069D1CE0FCA57E5";
inline constexpr const char* WriteReply = "00112233445566778899aabbccddeeff";

/// Blocks that the component has freed with a key in them, if the program looks for that.
inline int keysFreed = 0;

/// What an operation is given and may change.
struct HostArguments {
    std::wstring Text = L"abab0000000000000000000000000000 ";
    std::wstring Key = FaultKey; ///< in a text that has no room for a block
    Numbers Given = {9, 9};
};

struct Operation {
    std::string Name;
    /// Returns a result code, or for EncoderState a state.
    std::function<int32_t(Encoder&, HostArguments&)> Run;
    /// True if the arguments are as Encoder.h says, after a success or a failure with that path.
    std::function<bool(const HostArguments&, bool succeeded, const std::wstring& path)> LeavesArguments =
        [](auto&&...) { return true; };
};

inline const std::vector<Operation> Operations = {
    {"OpenEncoder", [](auto& e, auto&) { return e.OpenEncoder(DrawHandle(e)); }},
    {"ReOpenEncoder",
     [](auto& e, auto&) { return e.ReOpenEncoder(), e.LastError()->Number == 0 ? sceSuccess : sceError; }},
    {"CloseEncoder", [](auto& e, auto&) { return e.CloseEncoder(); }},
    {"EncoderState", [](auto& e, auto&) { return e.EncoderState(); }},
    {"ReaderType", [](auto& e, auto&) { return static_cast<void>(e.ReaderType()), sceSuccess; }},
    {"ReadSerialNumber", [](auto& e, auto& h) { return e.ReadSerialNumber(h.Text); },
     [](const auto& h, bool succeeded, auto&&) { return succeeded || h.Text.empty(); }},
    {"ReadDataBloc", [](auto& e, auto& h) { return e.ReadDataBloc(7, FaultKey, KeyTypeB, h.Text); },
     [](const auto& h, bool succeeded, const std::wstring& path) {
         const bool isSelected = !path.starts_with(L"SelectCardInRange");
         return succeeded ? h.Text.size() == 32 : h.Text == (isSelected ? L"" : HostArguments().Text);
     }},
    {"WriteDataBloc", [](auto& e, auto& h) { return e.WriteDataBloc(7, FaultKey, KeyTypeB, h.Text); },
     [](const auto& h, bool succeeded, auto&&) {
         return h.Text.size() == 32 && (succeeded || h.Text == L"ABAB" + std::wstring(28, L'0'));
     }},
    {"WriteValueBloc", [](auto& e, auto&) { return e.WriteValueBloc(5, FaultKey, KeyTypeB, 42); }},
    {"ReadManufacturerCode",
     [](auto& e, auto& h) {
         uint8_t checkSum = 9;
         const auto code = e.ReadManufacturerCode(FaultKey, KeyTypeB, h.Given[0], checkSum, h.Text);
         h.Given[1] = checkSum;
         return code;
     },
     [](const auto& h, bool succeeded, auto&&) {
         return succeeded ? h.Text.size() == 22 : h.Text.empty() && h.Given == Numbers{0, 0};
     }},
    {"ReadSectorTrailer", [](auto& e, auto& h) { return (h.Given = ReadTrailer(e, FaultKey, 1))[0]; },
     [](const auto& h, bool succeeded, auto&&) {
         return succeeded || h.Given == Numbers{sceError, 9, 0, 0, 0, 0, 9};
     }},
    {"WriteSectorTrailer",
     [](auto& e, auto&) {
         return e.WriteSectorTrailer(1, FaultKey, KeyTypeB, FaultKey, FaultKey, BothKeys, scbs_B_Read,
                                     scbs_B_Read, scbs_B_Read, scss_B_WriteKeysConditions, 0);
     }},
    {"WriteBytesInBloc",
     [](auto& e, auto& h) { return e.WriteBytesInBloc(7, FaultKey, KeyTypeB, 0, 15, h.Key); },
     [](const auto& h, bool, const std::wstring& path) {
         return h.Key.size() == (path.starts_with(L"ReadDataBloc") ? 0 : 32);
     }},
};

/// An encoder that lives through faults.
class FaultTest : public EncoderTest
{
protected:
    FaultTest()
    {
        reader.Replies["read block"] = ReadReply;
        reader.Replies["write block"] = WriteReply;
        reader.Replies["write vblock"] = "";
    }

    /// Closed for OpenEncoder, open for any other.
    void Prepare(const Operation& operation)
    {
        reader.Injected = {};
        encoder.CloseEncoder();
        if (operation.Name != "OpenEncoder") {
            encoder.ReOpenEncoder();
        }
        reader.Forget();
    }

    int32_t Run(const Operation& operation, HostArguments& host)
    {
        const RunningCode component(/*OfComponent=*/true);
        try {
            return operation.Run(encoder, host);
        } catch (const RaisedFailure&) {
            return sceError;
        }
    }

    void ExpectCleanLife()
    {
        reader.Injected = {};
        EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
        Open();
        std::wstring text;
        EXPECT_EQ(encoder.ReadDataBloc(7, FaultKey, KeyTypeB, text), sceSuccess);
        EXPECT_EQ(encoder.WriteDataBloc(7, FaultKey, KeyTypeB, text), sceSuccess);
        EXPECT_TRUE(text == std::wstring(WriteReply, WriteReply + 32));
        EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
        EXPECT_EQ(Last(), Clean(L"CloseEncoder"));
        EXPECT_TRUE(EncoderInside::ValueBlocks(encoder).empty());
    }
};

} // namespace acg
