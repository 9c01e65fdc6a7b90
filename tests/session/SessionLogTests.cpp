// What of a command and its reply reaches the log, and that it can be read back.
#include "session/SessionLog.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace session;

namespace
{

using namespace std::string_literals;

TEST(SessionLogTest, NoKeyIsWrittenAndAllElseIs)
{
    const std::string key = "A0A1A2A3A4A5";
    const std::string stars = "************";
    const std::string trailer = key + "FF078069" + key;
    const std::string masked = stars + "FF078069" + stars;
    const std::string block(32, '1');
    const std::string allMasked(32, '*');
    // Command, data, reply; the data and the reply in the log.
    const std::tuple<std::string, std::string, std::string, std::string, std::string> rows[] = {
        {"select", "", "1D2C3B4A\r\n", "", "1D2C3B4A\\x0D\\x0A"},
        {"select", "", "\\\"*\xE9", "", R"(\\\"\*\xE9)"},
        {"select", "", "1D\0"s + key, "", R"(1D\x00)" + stars},
        {"LogIn", "01bb" + key, "L\0"s + key, "01bb" + stars, "L\\x00" + stars},
        {"login", "01AA" + key, "ERR 5\r\n", "01AA" + stars, R"(ERR 5\x0D\x0A)"},
        {"login", "01AA" + key, "\xA0", "01AA" + stars, R"(\xA0)"},
        {"login", "01AA" + key, key + "\r\n", "01AA" + stars, stars + R"(\x0D\x0A)"},
        {"login", "01AA" + key, "\x01\xA0\xA1", "01AA" + stars, "***"},
        {"login", "01AA" + key + "A", "A0A1A2A3A4A", "*****" + stars, "A0A1A2A3A4A"},
        {"login", "01CC" + key, key, "****" + stars, stars},
        {"write block", "04" + block, block, "04" + block, block},
        {"write block", "7f" + trailer, trailer + "\0"s + key, "7f" + masked, masked + R"(\x00)" + stars},
        {"write block", "83" + block, block, "83" + block, block},
        {"write block", "8F" + trailer, " " + trailer, "8F" + masked, allMasked + "*"},
        {"write block", "07" + block, "A0A1A2", "07" + stars + "11111111" + stars, "******"},
        {"write block", "04" + trailer, block, "**" + allMasked, allMasked},
        {"write block", "07" + trailer.substr(1) + "0", trailer, "**" + allMasked, allMasked},
        {"write block", trailer + "07", trailer, "**" + allMasked, allMasked},
        {"write block", "7" + trailer, "F\0"s, "*" + allMasked, R"(F\x00)"},
        {"read block", "07", trailer + "\r\n", "07", masked + R"(\x0D\x0A)"},
        {"READ BLOCK", "FF", "ERR 12", "FF", "ERR 12"},
        {"read block", "0 ", block, "**", allMasked},
        {"write vblock", "0500000001", "00000001", "0500000001", "00000001"},
        {"write vblock", "05" + key, "00000001", "**" + stars, "00000001"},
        {"select", key, key, stars, stars},
        {"dance", key, "?\0"s, stars, R"(?\x00)"},
    };
    for (const auto& [command, data, reply, loggedData, loggedReply] : rows) {
        const std::string call = CommandText(2, command, data);
        EXPECT_EQ(call.substr(call.find("\" \"") + 2), '"' + loggedData + '"') << call;
        EXPECT_EQ(ReplyText(command, data, reply), '"' + loggedReply + '"') << command << ' ' << data;
    }
    for (const char* shown : {"dance fast", "turn 12345", "face 1 set"}) {
        EXPECT_EQ(CommandText(2, shown, ""), "SendCommandGetData 2 \""s + shown + "\" \"\"");
    }
    for (const char* hidden : {"turn 123456", "turn A0 A1-A2", "\xA0\xA1\xA2\xA3\xA4\xA5", "turn\n"}) {
        EXPECT_EQ(CommandText(2, hidden, ""),
                  "SendCommandGetData 2 \"" + std::string(std::strlen(hidden), '*') + "\" \"\"");
    }
}

TEST(SessionLogTest, ALineIsReadBackAsItWasWritten)
{
    using namespace std::chrono_literals;
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    const auto openComm = [](std::string_view device, uint8_t autodetect) {
        const acgreader::CommSettings settings{.BaudRate = -9600, .Protocol = 1};
        return CallText(acgreader::Function::OpenComm, {device, autodetect, settings});
    };
    const LoggedCall call{openComm(bytes, 1), ResultText(4294967295), 12345us, 67us};
    const std::string line = LogLine(call);
    EXPECT_TRUE(line.starts_with("12.345 OpenComm \"") && line.ends_with("1 -9600 1 = 4294967295 0.067\n"));
    const LoggedLine parsed = ParseLine(line.substr(0, line.size() - 1) + '\r').value_or(Gap{});
    const auto* const read = std::get_if<LoggedCall>(&parsed);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->Call, call.Call);
    EXPECT_EQ(ParseNumber(read->Result), 4294967295);
    EXPECT_TRUE(IsSameCall(read->Call, openComm("com1", 1)));
    EXPECT_FALSE(IsSameCall(read->Call, openComm("com1", 2)));
    EXPECT_EQ(ParseText(ResultText(bytes.substr(1) + '\0')), bytes.substr(1) + '\0');
    EXPECT_TRUE(IsSameCall(R"(X "01AA***" "*" 1)", R"(X "01AA****" "07" 1)"));
    EXPECT_FALSE(IsSameCall(R"(X "01AA***" 1)", R"(X "01BB***" 1)"));
    EXPECT_FALSE(IsSameCall(R"(X "01**" 1)", R"(X "01" 1 1)"));
    EXPECT_FALSE(IsSameCall(R"(X "01**" 1)", R"(X "01)"));
    EXPECT_EQ(ParseText(R"("**\*")"), "00*");

    for (const char* wrong :
         {"text", "1.0", "1.0 Dance 1 = 1 0.0", "1.0 CloseComm = 1 0.0", "1.0 CloseComm 1 1 = 1 0.0",
          "1.0 CloseComm 1 = \"\" 0.0", "1.0 CloseComm 1 = 1", "1.0 CloseComm 1 = 1 0.0 ",
          R"(1.0 GetReaderType 1 = "\x4" 0.0)", R"(1.0 GetReaderType 1 = "\x4)", "-1.0 CloseComm 1 = 1 0.0",
          "1.0 CloseComm 1 = 1 0.1000", "1.0 repeated: calls 0, times 1 0.0",
          "1.0 repeated: calls 9, times 1 0.0", "1.0 repeated: calls 1, times 0 0.0",
          R"(1.0 GetReaderType 1 = "\q" 0.0)", "1.0 GetReaderType 1 = \"A 0.0",
          "1.0 GetReaderType 1 = \"\xE9\" 0.0"}) {
        EXPECT_FALSE(ParseLine(wrong)) << wrong;
    }
    for (const char* note : {"# a note", "", "\xEF\xBB\xBF"}) {
        EXPECT_EQ(ParseLine(note).value_or(Gap{}).index(), 0) << note;
    }
    EXPECT_EQ(NoteLine("one\nline"), "# one?line\n");
}

} // namespace
