// The simulated reader library: the device text that plans a reader, its handles, its commands, and the card
// in its field. What the card grants under each access condition is held against the component's access
// levels.
#include "simulator/Library.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

using namespace simulator;

namespace
{

using namespace std::chrono_literals;

uint32_t OpenLine(Library& library, const std::string& device)
{
    acgreader::CommSettings settings = {.BaudRate = 19200, .Protocol = 1};
    return library.OpenComm(device, /*Autodetect=*/1, settings);
}

TEST(SimulatorTest, UnknownOptionsAreRefusedWithALineThatSaysWhy)
{
    Library library;
    for (const char* device : {"com1", ",reader=", ",readers=", ",fault=write vblock/12/?"}) {
        EXPECT_NE(OpenLine(library, device), 0U) << device;
    }
    EXPECT_EQ(library.OpenReader(OpenLine(library, ",readers="), 0x41, 0), 0U);
    std::istringstream refused(
        "card=2k card= CARD=1k uid=A1B2C3 uid=A1B2C3DG reader readers=4100 colour=red "
        "remove= remove=1x remove=4294967296 fault=login/1 fault=login/0/N "
        "fault=login/1/Z fault=login/1/NX fault=login/1/N/ fault=dance/1/N ,card=1k "
        "image= image=. image=no\x01where save= save=nowhere/card save=c,card=none "
        "cards= cards=nowhere cards=.,image=c cards=.,save=c feed=A1B2C3D4 feed=0/A1B2C3D4 "
        "feed=1001/A1B2C3D4 "
        "baud=0 baud=fast place=1/A1B2C3 place=x/A1B2C3D4 place=1/A1B2C3D4/2k return=1 "
        "return=1,remove=2 remove=1,remove=1 replay=log,card=1k readers=4 replay= replay=nowhere");
    for (std::string option; refused >> option;) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(OpenLine(library, "com1," + option), 0U);
        const std::string line = testing::internal::GetCapturedStderr();
        EXPECT_NE(line.find('"' + option.substr(0, option.find_first_of(",\x01"))), std::string::npos)
            << line;
        EXPECT_EQ(line.find_first_of("\x01\n"), line.size() - 1) << line;
    }
}

/// Commands, a colon before the data of each; options, as those of the device that is opened from there on.
/// Replies: a status letter as <L>, nothing as -, data of one digit as that digit.
struct Session {
    std::string Name;
    std::string Commands;
    std::string Replies;
    std::chrono::milliseconds LeastTime = 0ms;
};
using SimulatorSessionTest = testing::TestWithParam<Session>;

const std::pair<const char*, const char*> Abbreviations[] = {
    {"life", "start;in 00;get 01;select;in 00;write block:01(ones);select;in 00;get 01"},
    {"start", "use iso14443a;antenna on;select"},
    {"in (..)", "login:$1AAFFFFFFFFFFFF"},
    {"get ", "read block:"},
    {"\\(ones\\)", "11111111111111111111111111111111"},
    {"\\(polls\\)", "select;select;select;"},
    {"uid(.);", "uid=$1$1$1$1$1$1$1$1;"},
};

const Session Sessions[] = {
    {"WhatSelectNeeds", "antenna on;select;antenna off;use iso14443a;select;antenna on;select",
     "- <N> - - <N> - 1"},
    {"AntennaOff", "start;antenna off;select;antenna on;in 00", "- - 1 - <N> - <O>"},
    {"AFaultEndsTheSelection", ",fault=login/1/C,uid1;start;in 01;in 01;select;get 04",
     "- - 1 <C> <O> 1 <O>"},
    {"BadDataEndsNothing", "start;login:01CCFFFFFFFFFFFF;login:01AA;in 01;dance;get 04",
     "- - 1 <?> <?> <L> <?> 0"},
    {"AValue", "start;in 01;write vblock:06123456FE;get 06",
     "- - 1 <L> 123456FE FE56341201A9CBEDFE56341206F906F9"},
    {"OtherSectors", "start;in 01;get 08;get 40;get 04", "- - 1 <L> <O> <R> 0"},
    {"ATrailer", "start;in 01;write block:07A0A1A2A3A4A5FF078069B0B1B2B3B4B5;get 07;select;in 01",
     "- - 1 <L> 000000000000FF078069000000000000 000000000000FF078069B0B1B2B3B4B5 1 <X>"},
    {"Refusals", "start;in 01;write vblock:0700000001;in 01;start;login:01AAA0A1A2A3A4A5;in 01",
     "- - 1 <L> <F> <O> - - 1 <X> <O>"},
    {"Block0", ",uid=0a0b0c0e;start;in 00;get 00;write block:00(ones);select;in 00",
     "- - 0A0B0C0E <L> 0A0B0C0E0308040053494D554C415445 <F> 0A0B0C0E <L>"},
    {"ASelectionEndsTheLogin", "start;in 00;select;get 00;in 00", "- - 1 <L> 1 <O> <L>"},
    // A bit that disagrees with its copy blocks the sector, and no other.
    {"ABlockedSector",
     "start;in 00;write block:03FFFFFFFFFFFFFF078169FFFFFFFFFFFF;get 01;select;in 00;select;in 02",
     "- - 1 <L> 000000000000FF078169000000000000 <F> 1 <X> 1 <L>"},
    {"ACardIsItsSerialNumber", "life;,card=4k,uid1;start;in 00;get 01;in 20",
     "- - 1 <L> 0 1 <L> 1 1 <L> 1 - - 1 <L> 1 <R>"},
    {"AFaultOfAWrite", ",fault=write block/1/C,uid2;life", "- - 2 <L> 0 2 <L> <C> 2 <L> 0"},
    {"TwoFaults", ",fault=read block/1/,fault=login/2/X,uid2;life", "- - 2 <L> - 2 <X> <O> 2 <L> 0"},
    {"ACardThatLeaves", ",remove=8,uid3;life;,uid3;start;in 00;get 01",
     "- - 3 <L> 0 3 <L> 1 <N> <N> <N> - - 3 <L> 1"},
    {"ASlowLine", ",remove=4,lay=5/77777777,return=9,line=9600,uid3;life;select",
     "- - 3 <L> <N> 7 <L> 1 7 <O> <O> 3", 200ms},
    {"ASilentLogin", ",reader=MultiISO 1.0,uid4;life", "- - 4 - 0 4 - 1 4 - 1"},
    {"AnEmptyField", ",card=none;start", "- - <N>"},
    {"SectorsOf1K", ",card=1k;start;in 0F;in 10;get 3B;get 3C;get 40;login:02BBFFFFFFFFFFFF",
     "- - 1D2C3B4A <L> <R> <O> 0 <R> <L>"},
    {"SmallSectorsOf4K", ",card=4k;start;in 1F;get 7B;get 7C;get 7E;get 80", "- - 4D5C6B7A <L> <O> 0 0 <O>"},
    {"LargeSectorsOf4K", ",card=4k;start;in 20;get 7E;get 80;get 8E;get 90;in 3C;get EE;get F0;get FE;get FF",
     "- - 4D5C6B7A <L> <O> 0 0 <O> <L> <O> 0 0 000000000000FF078069FFFFFFFFFFFF"},
    {"NoSectorsOf4K", ",card=4k;start;in 21;in 3D;in 40;in FF;in 20", "- - 4D5C6B7A <R> <R> <R> <R> <L>"},
    {"AnImage", ",image=nowhere,image=@1024;start;,image=@1024,uid=01020308;start",
     "- - DEADBEEF - - 01020308"},
    {"AnImageOf4K", ",image=@4096,card=4k;start;in 20", "- - DEADBEEF <X>"},
    {"WrongImages", ",image=@1024,card=4k;select;,image=@1023;select;,image=nowhere;select", "<?> <?> <?>"},
    {"ABoxOfCards",
     ",cards=@,card=none,place=2/66666666;life;,image=@66666666.bin,save=@88888888.bin,uid7;"
     ",save=@AAAAAAAA.bin,uid7;,cards=@,place=5/AAAAAAAA/4k,uid8;start;in 00;get 01;select",
     "- - 6 <L> 0 6 <L> 1 6 <L> 1 - - 8 <L> 1 <N>"},
    {"AStackOfCards",
     ",cards=@,card=none,feed=2/A10000FF;start;select;select;in 00;(polls)(polls)select;select;"
     ",cards=@,card=none,feed=2/A10000FF;start;select;select",
     "- - <N> <N> A10000FF <L> A10000FF A10000FF A10000FF A10000FF A10000FF <N> <N> A1000100 "
     "- - <N> <N> A1000100"},
    {"ASavedCard", ",image=@new,save=@new,uid5;life;,image=@new,uid6;start;in 00;get 01",
     "- - 5 <L> 0 5 <L> 1 5 <L> 1 - - 6 <L> 1"},
};

TEST_P(SimulatorSessionTest, IsAnswered)
{
    const TemporaryFolder temporary;
    for (const size_t size : {1023U, 1024U, 4096U}) {
        std::ofstream file(temporary.Path / std::to_string(size), std::ios::binary);
        file << "\xDE\xAD\xBE\xEF" << std::string(size - 4, '\0');
    }
    std::string expanded = GetParam().Commands;
    for (const auto& [abbreviation, commands] : Abbreviations) {
        expanded = std::regex_replace(expanded, std::regex(abbreviation), commands);
    }
    std::istringstream all(std::regex_replace(expanded, std::regex("@"), temporary.Path.string() + '/'));
    const auto begin = std::chrono::steady_clock::now();
    Library library;
    uint32_t reader = library.OpenReader(OpenLine(library, "com1,uid=11111111"), 0x41, 0);
    std::string replies;
    for (std::string command; std::getline(all, command, ';');) {
        if (command.starts_with(',')) {
            reader = library.OpenReader(OpenLine(library, "com1" + command), 0x41, 0);
            continue;
        }
        const std::string name = command.substr(0, command.find(':'));
        const std::string data = command.substr(std::min(name.size() + 1, command.size()));
        std::string reply = library.SendCommandGetData(reader, name, data, {}) + "-";
        if (reply.size() == 3 && reply[1] == '\0') {
            reply = std::string("<") + reply[0] + ">-";
        }
        const bool isOneDigit = reply.find_first_not_of(reply[0]) >= reply.size() - 1;
        replies += (replies.empty() ? "" : " ") + reply.substr(0, isOneDigit ? 1 : reply.size() - 1);
    }
    EXPECT_EQ(replies, GetParam().Replies) << expanded;
    EXPECT_GE(std::chrono::steady_clock::now() - begin, GetParam().LeastTime);
}
INSTANTIATE_TEST_SUITE_P(, SimulatorSessionTest, testing::ValuesIn(Sessions),
                         [](const auto& session) { return session.param.Name; });

TEST(SimulatorTest, AReplayEndsAtTheFirstCallThatIsNotNext)
{
    Library library;
    const TemporaryFolder folder;
    const std::string path = (folder.Path / "replayed.log").string();
    std::ofstream(path, std::ios::binary)
        << "# next\n0.1 CloseComm 0 = 0 0.1\n0.1 OpenComm \"com9\" 1 19200 1 = 7 0.1\n"
           "0.1 OpenReader 7 65 0 = 8 0.1\r\n"
           "0.1 SendCommandGetData 8 \"login\" \"01AA************\" = \"L\\x00\" 0.1\n"
           "0.1 SendCommandGetData 8 \"read block\" \"04\" = \"00\" 0.1\n";
    EXPECT_EQ(OpenLine(library, "com1,replay=" + path), 7U);
    acgreader::ReaderLibrary& replay = library.Answering();
    EXPECT_EQ(replay.OpenReader(7, 65, 0), 8U);
    EXPECT_EQ(replay.SendCommandGetData(8, "login", "01AAA0A1A2A3A4A5", {}), StatusReply('L'));
    EXPECT_EQ(replay.SendCommandGetData(8, "read block", "05", {}), StatusReply('?'));
    EXPECT_EQ(replay.SendCommandGetData(8, "read block", "04", {}), StatusReply('?'));
    EXPECT_EQ(replay.GetReaderType(8, {}), "");
}

} // namespace
