// What a session leaves in its log: rounds that repeat, and gaps.
#include "recorder/LogWriter.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace recorder;
using namespace session;

namespace
{

using namespace std::chrono_literals;

/// The log of calls of a millisecond each, without the starts of the lines and the results.
/// "~": another second passes; "!": a call is missed; lower case: it is masked.
std::string LogOf(std::string_view calls)
{
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Path / "log";
    {
        LogWriter log;
        log.Open(file);
        std::chrono::microseconds now{0};
        for (const char call : calls) {
            if (call == '!') {
                log.Miss();
            } else if (call != '~') {
                log.Add({std::string(1, call), call >= 'a' ? "*" : "0", now, 1ms});
            }
            now += call == '~' ? 1s : 1ms;
        }
        log.Flush();
    }
    std::string text;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        const size_t begin = line.find(' ') + 1;
        text += line.substr(begin, line.find(" = ") - begin) + ' ';
    }
    return text;
}

TEST(LogWriterTest, ARoundThatRepeatsIsWrittenOnceWithItsCount)
{
    const std::pair<std::string_view, std::string> rows[] = {
        {"ABABAB", "A B A B A B "},
        {"AAAAAAAAAA", "A repeated: calls 1, times 9 9.000 "},
        {"ABABABABABABA", "A B repeated: calls 2, times 5 10.000 A "},
        {"ABAABAABAABAABB", "A B A repeated: calls 3, times 3 9.000 A B B "},
        {"ABCDEFGHABCDEFGHABD", "A B C D E F G H repeated: calls 8, times 1 8.000 A B D "},
        {"ABCDEFGHIABCDEFGHIA", "A B C D E F G H I A B C D E F G H I A "},
        {"aaaaaaaaaaaa", "a a a a a a a a a a a a "},
        {"ABAB~ABAB~A", "A B repeated: calls 2, times 1 2.000 repeated: calls 2, times 2 4.000 A "},
        {"AAAAAAAAAAA~A", "A repeated: calls 1, times 10 10.000 repeated: calls 1, times 1 1.000 "},
        {"ABA~BAB", "A B repeated: calls 2, times 1 1002.000 repeated: calls 2, times 1 2.000 "},
        {"AAAAAAAAAAAA!B", "A calls missing here: 12, out of memory B "},
        {"A!", "A calls missing here: 1, out of memory "},
    };
    for (const auto& [calls, lines] : rows) {
        EXPECT_EQ(LogOf(calls), lines) << calls;
    }
}

} // namespace
