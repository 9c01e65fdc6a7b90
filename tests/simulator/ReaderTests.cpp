// The simulated reader: the device text that plans it, its commands, and the card in its field. What the card
// grants under each access condition is held against the component's access levels.
#include "simulator/Reader.h"

#include "simulator/CardBox.h"
#include "simulator/Hex.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace simulator
{

namespace
{

TEST(DeviceTextTest, WhatIsUnknownIsRefused)
{
    for (const char* text : {"", "com1", "com1,reader=", "com1,readers=", "com1,fault=write vblock/12/?"}) {
        EXPECT_TRUE(ParseDeviceText(text)) << text;
    }
    for (const std::string option :
         {"card=2k", "card=", "CARD=1k", "uid=A1B2C3", "uid=A1B2C3DG", "image=", "reader", "readers=4100",
          "remove=", "remove=1x", "remove=4294967296", "colour=red", "card=1k,,card=1k", "fault=login/1",
          "fault=login/0/N", "fault=login/1/Z", "fault=login/1/NX", "fault=login/1/N/", "fault=dance/1/N"}) {
        EXPECT_FALSE(ParseDeviceText("com1," + option)) << option;
    }
}

Reader Open(CardBox& box, const std::string& options)
{
    const Device device = ParseDeviceText("com1," + options).value();
    return {device, box.Lay(device.Card).value()};
}

/// The replies to commands, each with a colon in front of its data: a status letter as <L>, nothing as -.
std::string Send(Reader& reader, std::initializer_list<std::string> commands)
{
    std::string replies;
    for (const std::string& command : commands) {
        const std::size_t name = std::min(command.find(':'), command.size());
        const std::string reply =
            reader.Send(command.substr(0, name), command.substr(std::min(name + 1, command.size())));
        const bool isStatus = reply.size() == 2 && reply[1] == '\0';
        replies += replies.empty() ? "" : " ";
        replies += isStatus ? std::string{'<', reply[0], '>'} : reply.empty() ? "-" : reply;
    }
    return replies;
}

std::string LogIn(Reader& reader, const std::string& number)
{
    Send(reader, {"use iso14443a", "antenna on", "select"});
    return Send(reader, {"login:" + number + "AAFFFFFFFFFFFF"});
}

TEST(SimulatedReaderTest, AnswersASessionStepByStep)
{
    CardBox box;
    Reader reader = Open(box, "uid=0a0b0c0e,fault=login/1/C");
    const std::string select = "select";
    const std::string login = "login:01AAFFFFFFFFFFFF";
    const std::string login0 = "login:00AAFFFFFFFFFFFF";
    const auto expect = [&reader](std::initializer_list<std::string> commands, const std::string& replies) {
        EXPECT_EQ(Send(reader, commands), replies);
    };
    expect({"antenna on", select, "use iso14443a", select}, "- <N> - 0A0B0C0E"); // it needs both
    expect({login, login, select, "read block:04"},
           "<C> <O> 0A0B0C0E <O>"); // a planned fault ends the selection
    expect({"login:01CCFFFFFFFFFFFF", "login:01AA", login, "dance"}, "<?> <?> <L> <?>");
    expect({"write vblock:06123456FE", "read block:06"}, "123456FE FE56341201A9CBEDFE56341206F906F9");
    expect({"read block:08", "read block:40"}, "<O> <R>");
    expect({"write block:07A0A1A2A3A4A5FF078069B0B1B2B3B4B5"}, "000000000000FF078069000000000000");
    expect({"read block:07"}, "000000000000FF078069B0B1B2B3B4B5");
    // What the card refuses, such as a value in a trailer or a wrong key, ends the selection too.
    expect({"write vblock:0700000001", login, select}, "<F> <O> 0A0B0C0E");
    expect({login, "login:01AAA0A1A2A3A4A5", select}, "<X> <O> 0A0B0C0E");
    expect({login0, "read block:00"}, "<L> 0A0B0C0E0308040053494D554C415445");
    expect({select, "read block:00", login0}, "0A0B0C0E <O> <L>"); // a selection ends the login
    expect({"write block:0000000000000000000000000000000000", "antenna off", select}, "<F> - <N>");
}

TEST(SimulatedReaderTest, LoginNumberOpensItsSectorAndNoBlockBesides)
{
    CardBox box;
    Reader small = Open(box, "card=1k");
    Reader large = Open(box, "card=4k");
    const auto hex = [](unsigned number) { return ToHex({{static_cast<uint8_t>(number)}}); };
    for (unsigned login = 0; login < 256; ++login) {
        EXPECT_EQ(LogIn(small, hex(login)), login < 16 ? "<L>" : "<R>") << login;
        const bool exists = login < 32 || (login < 64 && login % 4 == 0);
        EXPECT_EQ(LogIn(large, hex(login)), exists ? "<L>" : "<R>") << login;
        const unsigned end = login * 4 + (login < 32 ? 4 : 16);
        for (unsigned block = 0; block < 256; ++block) {
            const bool isRead = Send(large, {"read block:" + hex(block)}).size() == 32;
            ASSERT_EQ(isRead, exists && block >= login * 4 && block < end) << login << ' ' << block;
        }
    }
}

TEST(SimulatedReaderTest, OptionsTellWhatComesOfALife)
{
    // The replies to a login, a read of a block, a login, a write of ones, a login and a read: a letter, the
    // first digit of data, or a dash for nothing.
    const std::pair<const char*, const char*> lives[] = {
        {"uid=00000001", "L0L1L1"},
        {"uid=00000001,card=4k", "L1L1L1"}, // a card is its serial number
        {"uid=00000002,fault=write block/1/C", "L0LCL0"},
        {"uid=00000002,fault=read block/1/,fault=login/2/X", "L-XOL0"},
        {"uid=00000003,remove=10", "L0L1NN"},
        {"uid=00000003", "L1L1L1"},
        {"card=none", "NNNNNN"},
        {"uid=00000004,reader=MultiISO 1.0", "-0-1-1"}};
    CardBox box;
    for (const auto& [options, expected] : lives) {
        Reader reader = Open(box, options);
        std::string replies;
        for (const char* command :
             {"read block:01", "write block:0111111111111111111111111111111111", "read block:01"}) {
            for (const std::string& reply : {LogIn(reader, "00"), Send(reader, {command})}) {
                replies += reply[reply.front() == '<' ? 1 : 0];
            }
        }
        EXPECT_EQ(replies, expected) << options;
    }
}

TEST(SimulatedCardTest, EachBitThatDisagreesWithItsCopyBlocksTheSectorAndNoOther)
{
    constexpr std::array<uint8_t, KeySize> key = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    constexpr Block openTrailer = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x07, 0x80};
    for (unsigned bit = 0; bit < 24; ++bit) {
        Card card(BlocksOf1K, {});
        Block trailer = openTrailer;
        trailer[6 + bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
        ASSERT_TRUE(card.Write(7, KeyType::A, trailer));
        EXPECT_FALSE(card.Login(1, KeyType::A, key)) << bit;
        EXPECT_FALSE(card.Read(4, KeyType::A)) << bit;
        EXPECT_FALSE(card.Write(7, KeyType::A, openTrailer)) << bit;
        EXPECT_TRUE(card.Login(2, KeyType::A, key)) << bit;
    }
}

TEST(CardBoxTest, ImageIsAWholeCardThatBringsItsSerialNumber)
{
    const std::string path = testing::TempDir() + "simulated-card.bin";
    const auto lay = [&](std::size_t size, const std::string& options) {
        std::ofstream(path, std::ios::binary) << "\xDE\xAD\xBE\xEF" << std::string(size - 4, '\0');
        CardBox box;
        const auto card = box.Lay(ParseDeviceText("com1,image=" + path + options).value().Card);
        std::filesystem::remove(path);
        return card ? ToHex((*card)->GetSerialNumber()) : "refused";
    };
    EXPECT_EQ(lay(1024, ""), "DEADBEEF");
    EXPECT_EQ(lay(4096, ",card=4k"), "DEADBEEF");
    EXPECT_EQ(lay(1024, ",uid=01020308"), "01020308");
    EXPECT_EQ(lay(1024, ",card=4k"), "refused");
    EXPECT_EQ(lay(1023, ""), "refused");
    EXPECT_EQ(lay(1024, ",image=nowhere"), "refused");
}

} // namespace
} // namespace simulator
