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

const std::string FactoryKey = "FFFFFFFFFFFF";

Reader Open(CardBox& box, const std::string& options)
{
    const Device device = ParseDeviceText("com1," + options).value();
    return {device, box.Lay(device.Card).value()};
}

/// A status letter shows as <L>, data as it is.
std::string Send(Reader& reader, const std::string& command, const std::string& data = "")
{
    const std::string reply = reader.Send(command, data);
    return reply.size() == 2 && reply[1] == '\0' ? std::string{'<', reply[0], '>'} : reply;
}

std::string LogIn(Reader& reader, uint8_t number = 0)
{
    for (const char* command : {"use iso14443a", "antenna on", "select"}) {
        Send(reader, command);
    }
    return Send(reader, "login", ToHex({&number, 1}) + "AA" + FactoryKey);
}

TEST(SimulatedReaderTest, AnswersASessionStepByStep)
{
    CardBox box;
    Reader reader = Open(box, "uid=0a0b0c0e,fault=login/1/C");
    const std::array<std::string, 3> steps[] = {
        {"antenna on", "", ""},
        {"select", "", "<N>"}, // ISO 14443 A is not chosen yet
        {"use iso14443a", "", ""},
        {"select", "", "0A0B0C0E"},
        {"login", "01AA" + FactoryKey, "<C>"}, // a planned fault ends the selection
        {"login", "01AA" + FactoryKey, "<O>"},
        {"select", "", "0A0B0C0E"},
        {"read block", "04", "<O>"},
        {"login", "01CC" + FactoryKey, "<?>"},
        {"login", "01AA", "<?>"},
        {"login", "01AA" + FactoryKey, "<L>"},
        {"write vblock", "06123456FE", "123456FE"},
        {"read block", "06", "FE56341201A9CBEDFE56341206F906F9"},
        {"read block", "08", "<O>"},
        {"read block", "40", "<R>"},
        {"dance", "", "<?>"},
        {"write block", "07A0A1A2A3A4A5FF078069B0B1B2B3B4B5", "000000000000FF078069000000000000"},
        {"read block", "07", "000000000000FF078069B0B1B2B3B4B5"},
        {"write vblock", "0700000001", "<F>"}, // a trailer
        {"login", "01AA" + FactoryKey, "<O>"}, // what the card refuses ends the selection
        {"select", "", "0A0B0C0E"},
        {"login", "01AA" + FactoryKey, "<X>"},
        {"login", "01AAA0A1A2A3A4A5", "<O>"},
        {"select", "", "0A0B0C0E"},
        {"login", "00AA" + FactoryKey, "<L>"},
        {"read block", "00", "0A0B0C0E0308040053494D554C415445"},
        {"select", "", "0A0B0C0E"}, // ends the login
        {"read block", "00", "<O>"},
        {"login", "00AA" + FactoryKey, "<L>"},
        {"write block", "0000000000000000000000000000000000", "<F>"},
        {"antenna off", "", ""},
        {"select", "", "<N>"},
    };
    for (const auto& [command, sent, reply] : steps) {
        EXPECT_EQ(Send(reader, command, sent), reply) << command << ' ' << sent;
    }
}

TEST(SimulatedReaderTest, LoginNumberOpensItsSectorAndNoBlockBesides)
{
    CardBox box;
    Reader small = Open(box, "card=1k");
    Reader large = Open(box, "card=4k");
    for (unsigned login = 0; login < 256; ++login) {
        const auto number = static_cast<uint8_t>(login);
        EXPECT_EQ(LogIn(small, number), login < 16 ? "<L>" : "<R>") << login;
        const bool exists = login < 32 || (login < 64 && login % 4 == 0);
        EXPECT_EQ(LogIn(large, number), exists ? "<L>" : "<R>") << login;
        const unsigned end = login * 4 + (login < 32 ? 4 : 16);
        for (unsigned block = 0; block < 256; ++block) {
            const auto byte = static_cast<uint8_t>(block);
            ASSERT_EQ(Send(large, "read block", ToHex({&byte, 1})).size() == 32,
                      exists && block >= login * 4 && block < end)
                << login << ' ' << block;
        }
    }
}

// The replies to a login, a read of a block, a login, a write of ones, a login and a read: a letter, the
// first digit of data, or a dash for nothing.
TEST(SimulatedReaderTest, OptionsTellWhatComesOfALife)
{
    const std::pair<const char*, const char*> lives[] = {
        {"uid=00000001", "L0L1L1"},
        {"uid=00000001,card=4k", "L1L1L1"}, // a card is its serial number
        {"uid=00000002,fault=write block/1/C", "L0LCL0"},
        {"uid=00000002,fault=read block/1/,fault=login/2/X", "L-XOL0"},
        {"uid=00000003,remove=10", "L0L1NN"},
        {"uid=00000003", "L1L1L1"},
        {"card=none", "NNNNNN"},
        {"uid=00000004,reader=MultiISO 1.0", "-0-1-1"},
    };
    CardBox box;
    for (const auto& [options, expected] : lives) {
        Reader reader = Open(box, options);
        std::string replies;
        for (const char* command : {"read block", "write block", "read block"}) {
            const std::string data = *command == 'w' ? "01" + std::string(32, '1') : "01";
            for (const std::string& reply : {LogIn(reader), Send(reader, command, data)}) {
                replies += reply.empty() ? '-' : reply[reply.front() == '<' ? 1 : 0];
            }
        }
        EXPECT_EQ(replies, expected) << options;
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
