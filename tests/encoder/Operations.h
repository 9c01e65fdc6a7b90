// The public operations on a scripted reader, and every fault that a call of theirs can meet.
#pragma once

#include "tests/cards/CardTest.h"

#include <functional>

namespace acg
{

/// Every key that an operation is given. A trailer that is read holds it twice.
inline constexpr const wchar_t* FaultKey = L"D1ce0fCA57e5";
inline constexpr const char* ReadReply = "D1CE0FCA57E5FF078069D1CE0FCA57E5";
inline constexpr const char* WriteReply = "00112233445566778899aabbccddeeff";
inline const std::wstring Zeros(32, L'0');

/// What an operation is given, and what it leaves there.
struct HostArguments {
    std::wstring Text = L"abab0000000000000000000000000000 ";
    Numbers Given = {9, 9};

    bool operator==(const HostArguments&) const = default;
};

/// How far an operation came.
struct Course {
    bool Succeeded = false;
    bool Selected = false;            ///< the card, by the last of its block operations
    std::wstring Answer;              ///< of the last "select" or GetReaderType
    std::vector<std::wstring> Blocks; ///< what "read block" and "write block" answered, as block text
};

struct Operation {
    std::wstring Name;
    /// The calls that it makes; "card" stands for those of a selection.
    std::string Calls;
    /// Gives a result code, or for EncoderState a state.
    std::function<int32_t(Encoder&, HostArguments&)> Run;
    /// Does to the arguments what the operation is to do.
    std::function<void(const Course&, HostArguments&)> Leave = [](auto&&...) {};
    /// Through which it goes to the reader, one after the other.
    std::vector<std::wstring> BlockOperations = {L""};
};

/// What is written doesn't hang on what was read: all levels and BX, or all bytes of a block, are given.
inline const std::vector<Operation> Operations = {
    {L"OpenEncoder", "OpenComm SetCommTimeout SetCommProtocol DetectReader OpenReader card",
     [](auto& e, auto&) { return e.OpenEncoder(EncoderInside::HandleNumber(e)); }},
    {L"ReOpenEncoder",
     "CloseReader CloseComm OpenComm SetCommTimeout SetCommProtocol DetectReader OpenReader card",
     [](auto& e, auto&) {
         e.ReOpenEncoder();
         return e.LastError()->Number == 0 ? sceSuccess : sceError;
     }},
    {L"CloseEncoder", "CloseReader CloseComm", [](auto& e, auto&) { return e.CloseEncoder(); }},
    {L"EncoderState", "card", [](auto& e, auto&) { return e.EncoderState(); }},
    {L"ReaderType", "GetReaderType",
     [](auto& e, auto& h) {
         try {
             h.Text = e.ReaderType();
             return sceSuccess;
         } catch (const RaisedFailure&) {
             return sceError;
         }
     },
     [](const auto& c, auto& h) { h.Text = c.Succeeded ? c.Answer : h.Text; }},
    {L"ReadSerialNumber", "select", [](auto& e, auto& h) { return e.ReadSerialNumber(h.Text); },
     [](const auto& c, auto& h) { h.Text = c.Succeeded ? c.Answer : L""; }},
    {L"ReadDataBloc", "card login read_block",
     [](auto& e, auto& h) { return e.ReadDataBloc(7, FaultKey, KeyTypeB, h.Text); },
     [](const auto& c, auto& h) {
         h.Text = c.Succeeded ? c.Blocks[0] : std::wstring(c.Selected ? L"" : h.Text);
     }},
    {L"WriteDataBloc", "card login write_block",
     [](auto& e, auto& h) { return e.WriteDataBloc(7, FaultKey, KeyTypeB, h.Text); },
     [](const auto& c, auto& h) { h.Text = c.Succeeded ? c.Blocks.back() : L"ABAB" + Zeros.substr(4); }},
    {L"WriteValueBloc", "card login write_vblock",
     [](auto& e, auto&) { return e.WriteValueBloc(5, FaultKey, KeyTypeB, 42); }},
    {L"ReadManufacturerCode",
     "card login read_block",
     [](auto& e, auto& h) {
         uint8_t checkSum = 9;
         const auto code = e.ReadManufacturerCode(FaultKey, KeyTypeB, h.Given[0], checkSum, h.Text);
         h.Given[1] = checkSum;
         return code;
     },
     [](const auto& c, auto& h) {
         h.Given = c.Succeeded && c.Blocks[0] != Zeros ? Numbers{-775024694, 0x57} : Numbers{0, 0};
         h.Text = c.Succeeded ? c.Blocks[0].substr(10) : L"";
     },
     {L"ReadDataBloc"}},
    {L"ReadSectorTrailer",
     "card login read_block",
     [](auto& e, auto& h) {
         h.Given = ReadTrailer(e, FaultKey, 1);
         return h.Given[0];
     },
     [](const auto& c, auto& h) {
         const bool isZero = c.Succeeded && c.Blocks[0] == Zeros;
         h.Given = !c.Succeeded ? Numbers{sceError, 9, 0, 0, 0, 0, 9}
                   : isZero     ? Numbers{sceSuccess, KeyAAlone, 15, 15, 15, 1, 0}
                                : Numbers{sceSuccess, KeyAAlone, 15, 15, 15, 3, 0x69};
     },
     {L"ReadDataBloc"}},
    {L"WriteSectorTrailer",
     "card login read_block card login read_block card login write_block",
     [](auto& e, auto&) {
         return e.WriteSectorTrailer(1, FaultKey, KeyTypeB, FaultKey, FaultKey, BothKeys, scbs_B_Read,
                                     scbs_B_Read, scbs_B_Read, scss_B_WriteKeysConditions, 0);
     },
     [](auto&&...) {},
     {L"ReadDataBloc", L"ReadSectorTrailer:ReadDataBloc", L"WriteDataBloc"}},
    {L"WriteBytesInBloc",
     "card login read_block card login write_block",
     [](auto& e, auto& h) { return e.WriteBytesInBloc(7, FaultKey, KeyTypeB, 0, 15, h.Text); },
     [](const auto& c, auto& h) { h.Text = c.Blocks.empty() ? L"" : c.Blocks.back(); },
     {L"ReadDataBloc", L"WriteDataBloc"}},
    // A key in a host's text that has no room for a block.
    {L"WriteBytesInBloc",
     "card login read_block card login write_block",
     [](auto& e, auto& h) {
         {
             const Turn ofHost(/*OfComponent=*/false);
             h.Text = std::wstring(FaultKey);
         }
         return e.WriteBytesInBloc(7, FaultKey, KeyTypeB, 0, 15, h.Text);
     },
     [](const auto& c, auto& h) { h.Text = c.Blocks.empty() ? L"" : c.Blocks.back(); },
     {L"ReadDataBloc", L"WriteDataBloc"}},
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
        if (operation.Name != L"OpenEncoder") {
            encoder.ReOpenEncoder();
        }
        reader.Forget();
    }

    int32_t Run(const Operation& operation, HostArguments& host)
    {
        const Turn component(/*OfComponent=*/true);
        return operation.Run(encoder, host);
    }

    void ExpectCleanLife()
    {
        reader.Injected = {};
        EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
        Open();
        std::wstring text;
        EXPECT_EQ(encoder.ReadDataBloc(7, FaultKey, KeyTypeB, text), sceSuccess);
        EXPECT_TRUE(text == std::wstring(ReadReply, ReadReply + Zeros.size()));
        EXPECT_EQ(encoder.WriteDataBloc(7, FaultKey, KeyTypeB, text), sceSuccess);
        EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
        EXPECT_EQ(Last(), Clean(L"CloseEncoder"));
        EXPECT_FALSE(EncoderInside::ValueBlocks(encoder));
    }

    /// All faults of these calls, each once, twice in a row and for ever after. A call that gives neither
    /// handle nor text can only fail to be made.
    static std::vector<ScriptedReader::Fault> FaultsOf(const std::vector<std::string>& calls)
    {
        std::vector<ScriptedReader::Fault> faults;
        for (int call = 1; call <= static_cast<int>(calls.size()); ++call) {
            const std::string& called = calls[static_cast<size_t>(call - 1)];
            std::vector<std::optional<std::string>> replies = {std::nullopt};
            if (!called.starts_with("SetComm") && !called.starts_with("Close")) {
                replies.emplace_back("");
            }
            if (called.starts_with("SendCommandGetData")) {
                replies.emplace_back(ReadReply + std::string(512, '0')); // longer than the buffer
                for (const char letter : std::string_view("NX?CFIORLxl")) {
                    replies.emplace_back(ScriptedReader::Status(letter));
                }
            }
            for (const auto& reply : replies) {
                faults.push_back({call, 1, reply});
                faults.push_back({call, 2, reply});
                faults.push_back({call, ScriptedReader::Always, reply});
            }
        }
        return faults;
    }
};

} // namespace acg
