// The simulated reader library: the device text that plans a reader, its handles, its commands, and the card
// in its field. What the card grants under each access condition is held against the component's access
// levels.
#include "simulator/Library.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace simulator;

namespace
{

using namespace std::string_literals;

class SimulatorTest : public testing::Test
{
protected:
    Library library;

    uint32_t OpenLine(const std::string& options)
    {
        acgreader::CommSettings settings = {.BaudRate = 19200, .Protocol = 1};
        return library.OpenComm("com1" + options, /*Autodetect=*/1, settings);
    }
    uint32_t Open(const std::string& options) { return library.OpenReader(OpenLine(options), 0x41, 0); }

    /// The replies to commands, each with a colon in front of its data: a status letter as <L>, nothing as -,
    /// data of one digit as that digit.
    std::string Send(uint32_t reader, const std::vector<std::string>& commands)
    {
        std::string replies;
        for (const std::string& command : commands) {
            const std::string name = command.substr(0, command.find(':'));
            const std::string data = command.substr(std::min(name.size() + 1, command.size()));
            std::string reply = library.SendCommandGetData(reader, name, data, {}) + "-";
            if (reply.size() == 3 && reply[1] == '\0') {
                reply = std::string("<") + reply[0] + ">-";
            }
            const bool isOneDigit = reply.find_first_not_of(reply[0]) >= reply.size() - 1;
            replies += (replies.empty() ? "" : " ") + reply.substr(0, isOneDigit ? 1 : reply.size() - 1);
        }
        return replies;
    }
};

TEST_F(SimulatorTest, UnknownOptionsAreRefusedWithALineThatSaysWhy)
{
    for (const char* options : {"", ",reader=", ",readers=", ",fault=write vblock/12/?"}) {
        EXPECT_NE(OpenLine(options), 0U) << options;
    }
    std::istringstream refused(
        "card=2k card= CARD=1k uid=A1B2C3 uid=A1B2C3DG reader readers=4100 colour=red "
        "remove= remove=1x remove=4294967296 fault=login/1 fault=login/0/N "
        "fault=login/1/Z fault=login/1/NX fault=login/1/N/ fault=dance/1/N ,card=1k "
        "image= image=. image=no\x01where save= save=nowhere/card save=c,card=none "
        "baud=0 baud=fast place=1/A1B2C3 place=x/A1B2C3D4 place=1/A1B2C3D4/2k return=1 "
        "return=1,remove=2 remove=1,remove=1");
    for (std::string option; refused >> option;) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(OpenLine("," + option), 0U);
        const std::string line = testing::internal::GetCapturedStderr();
        EXPECT_NE(line.find('"' + option.substr(0, option.find_first_of(",\x01"))), std::string::npos)
            << line;
        EXPECT_EQ(line.find_first_of("\x01\n"), line.size() - 1) << line;
    }
}

TEST_F(SimulatorTest, AnswersSessionsStepByStep)
{
    const TemporaryFolder temporary;
    const std::filesystem::path& folder = temporary.Path;
    for (const size_t size : {1023U, 1024U, 4096U}) {
        std::ofstream file(folder / std::to_string(size), std::ios::binary);
        file << "\xDE\xAD\xBE\xEF" << std::string(size - 4, '\0');
    }
    const std::string image = ",image=" + folder.string() + "/";
    const auto in = [](const std::string& sector) { return "login:" + sector + "AAFFFFFFFFFFFF"; };
    const auto get = [](const std::string& block) { return "read block:" + block; };
    const std::string ones = "write block:0111111111111111111111111111111111";
    const std::vector<std::string> select = {"use iso14443a", "antenna on", "select"};
    std::vector<std::string> life = select;
    for (const std::string& command :
         {in("00"), get("01"), "select"s, in("00"), ones, "select"s, in("00"), get("01")}) {
        life.push_back(command);
    }
    // The options of the reader that is opened, or none for the one that is; commands; replies.
    const std::tuple<std::string, std::vector<std::string>, std::string> steps[] = {
        {",uid=0a0b0c0e,fault=login/1/C", {"antenna on", "select"}, "- <N>"}, // it needs both
        {"", {"antenna off", "use iso14443a", "select", "antenna on", "select"}, "- - <N> - 0A0B0C0E"},
        {"", {in("01"), in("01"), "select", get("04")}, "<C> <O> 0A0B0C0E <O>"}, // a fault ends the selection
        {"", {"login:01CCFFFFFFFFFFFF", "login:01AA", in("01"), "dance"}, "<?> <?> <L> <?>"},
        {"", {"write vblock:06123456FE", get("06")}, "123456FE FE56341201A9CBEDFE56341206F906F9"},
        {"", {get("08"), get("40")}, "<O> <R>"},
        {"", {"write block:07A0A1A2A3A4A5FF078069B0B1B2B3B4B5"}, "000000000000FF078069000000000000"},
        {"", {get("07")}, "000000000000FF078069B0B1B2B3B4B5"},
        // What the card refuses, such as a value in a trailer or a wrong key, ends the selection too.
        {"", {"write vblock:0700000001", in("01"), "select"}, "<F> <O> 0A0B0C0E"},
        {"", {in("01"), "login:01AAA0A1A2A3A4A5", "select"}, "<X> <O> 0A0B0C0E"},
        {"", {in("00"), get("00")}, "<L> 0A0B0C0E0308040053494D554C415445"},
        {"", {"select", get("00"), in("00")}, "0A0B0C0E <O> <L>"}, // a selection ends the login
        {"", {"write block:0000000000000000000000000000000000", "select", in("00")}, "<F> 0A0B0C0E <L>"},
        // A bit that disagrees with its copy blocks the sector, and no other.
        {"", {"write block:03FFFFFFFFFFFFFF078169FFFFFFFFFFFF"}, "000000000000FF078169000000000000"},
        {"",
         {get("01"), "select", in("00"), "select", "login:02BBFFFFFFFFFFFF"},
         "<F> 0A0B0C0E <X> 0A0B0C0E <L>"},
        {"", {"antenna off", "select"}, "- <N>"},
        {",uid=11111111", life, "- - 1 <L> 0 1 <L> 1 1 <L> 1"},
        {",uid=11111111,card=4k", life, "- - 1 <L> 1 1 <L> 1 1 <L> 1"}, // a card is its serial number
        {",uid=22222222,fault=write block/1/C", life, "- - 2 <L> 0 2 <L> <C> 2 <L> 0"},
        {",uid=22222222,fault=read block/1/,fault=login/2/X", life, "- - 2 <L> - 2 <X> <O> 2 <L> 0"},
        {",uid=33333333,remove=8", life, "- - 3 <L> 0 3 <L> 1 <N> <N> <N>"},
        {",uid=33333333,remove=4,lay=5/77777777,return=9,line=9600", life, "- - 3 <L> <N> 7 <L> 1 7 <O> <O>"},
        {"", {"select"}, "3"},
        {",uid=33333333", life, "- - 3 <L> 1 3 <L> 1 3 <L> 1"},
        {",uid=44444444,reader=MultiISO 1.0", life, "- - 4 - 0 4 - 1 4 - 1"},
        {",card=none", select, "- - <N>"},
        {",card=4k", select, "- - 4D5C6B7A"},
        {"", {in("1F"), get("7B"), get("7C"), get("7E"), get("80")}, "<L> <O> 0 0 <O>"},
        {"", {in("20"), get("7E"), get("80"), get("8E"), get("90")}, "<L> <O> 0 0 <O>"},
        {"", {in("3C"), get("EE"), get("F0"), get("FE")}, "<L> <O> 0 0"},
        {"", {in("21"), in("3D"), in("40"), in("FF")}, "<R> <R> <R> <R>"},
        {"", {get("FF")}, "000000000000FF078069FFFFFFFFFFFF"},
        {",card=1k", select, "- - 1D2C3B4A"},
        {"", {in("0F"), in("10"), get("3B"), get("3C"), get("40")}, "<L> <R> <O> 0 <R>"},
        {image + "1024,uid=01020308", select, "- - 01020308"},
        {image + "1024,card=4k", select, "<?> <?> <?>"},
        {image + "1023", select, "<?> <?> <?>"},
        {image + "1024,image=nowhere", select, "<?> <?> <?>"},
        {image + "1024", select, "- - DEADBEEF"},
        {image + "4096,card=4k", select, "- - DEADBEEF"},
        {image + "new,uid=55555555,save=" + folder.string() + "/new", life, "- - 5 <L> 0 5 <L> 1 5 <L> 1"},
        {image + "new,uid=66666666", life, "- - 6 <L> 1 6 <L> 1 6 <L> 1"}, // what has been saved
    };
    const auto begin = std::chrono::steady_clock::now();
    uint32_t reader = 0;
    for (const auto& [options, commands, replies] : steps) {
        reader = options.empty() ? reader : Open(options);
        EXPECT_EQ(Send(reader, commands), replies) << options;
    }
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200)); // on the slow line
}

TEST_F(SimulatorTest, AReplayEndsAtTheFirstCallThatIsNotNext)
{
    const TemporaryFolder folder;
    const std::string path = (folder.Path / "replayed.log").string();
    std::ofstream(path, std::ios::binary)
        << "# next\n0.1 CloseComm 0 = 0 0.1\n0.1 OpenComm \"com9\" 1 19200 1 = 7 0.1\n"
           "0.1 OpenReader 7 65 0 = 8 0.1\r\n"
           "0.1 SendCommandGetData 8 \"login\" \"01AA************\" = \"L\\x00\" 0.1\n"
           "0.1 SendCommandGetData 8 \"read block\" \"04\" = \"00\" 0.1\n";
    const std::string other = path + ",card=1k";
    EXPECT_EQ(OpenLine(",replay=" + other), 0U);
    EXPECT_EQ(OpenLine(",replay=" + path), 7U);
    acgreader::ReaderLibrary& replay = library.Answering();
    EXPECT_EQ(replay.OpenReader(7, 65, 0), 8U);
    EXPECT_EQ(replay.SendCommandGetData(8, "login", "01AAA0A1A2A3A4A5", {}), StatusReply('L'));
    EXPECT_EQ(replay.SendCommandGetData(8, "read block", "05", {}), StatusReply('?'));
    EXPECT_EQ(replay.SendCommandGetData(8, "read block", "04", {}), StatusReply('?'));
    EXPECT_EQ(replay.GetReaderType(8, {}), "");
}

} // namespace
