// How rounds of calls that were repeated are replayed, and what of a damaged log is.
#include "simulator/Replay.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{

/// In a log and a replay A to C are GetReaderType of that reader, with the digit that follows as its result.
/// In a log "2x3" stands for two calls that were repeated three times, in an instant, "2x3L" for long.
TEST(ReplayTest, ARoundIsAnsweredAsOftenAsItIsAsked)
{
    const std::tuple<std::string, std::string, std::string> rows[] = {
        {"A1 B1 2x3 A1 B2", "ABABABABABA", "1111111112-"}, // few: as often as in the log
        {"A1 1x2 1x3 A2", "AAAAAAA", "1111112"},
        {"A1 B1 2x3 A1 C1", "ABAC", "1111"},
        {"A1 B1 2x3 A1 C1", "ABABABABABABAC", "11111111111111"},
        {"A1 B1 2x3 A1 C1", "AC", "1-"},
        {"A1 B1 2x3 C1", "ABABBC", "1111--"},
        {"A1 1x17L A2", "AAAAAAAAAAAAAAAAAAAAAAAA", "111111111111111111111111"}, // many: as long
        {"A1 1x17 A2", "AAA", "12-"},
        {"A1 1x17L B1 A1 1x17 A2", "AABAAA", "11112-"},
        {"A1 A1 B1 3x2 A1 1x3 C1", "AABAAAAAC", "111111111"},
        {"A1 1x3", "AAAAAAA", "1111111"},
        {"A1 B1 2x3 B1 1x20 C1", "ABBBBBC", "1111111"},
        {"A1 B1 2x1 1x1 C1", "ABABC", "1111-"}, // the end of what can be read
        {"A1 3x1 C1", "AC", "1-"},
        {"A1 # C1", "AC", "1-"},
        {"A1 ? C1", "AC", "1-"},
    };
    const TemporaryFolder folder;
    const std::filesystem::path path = folder.Path / "log";
    for (const auto& [log, calls, results] : rows) {
        std::ofstream file(path);
        file << "500000.000 OpenComm \"\" 0 0 0 = 1 0.000\n";
        std::istringstream tokens(log);
        for (std::string token; tokens >> token;) {
            if (token == "#") {
                file << "# calls missing here: 1, because\n";
            } else if (token[1] == 'x') {
                const bool isLong = token.back() == 'L';
                file << "500000.000 repeated: calls " << token[0] << ", times "
                     << token.substr(2, token.size() - 2 - (isLong ? 1 : 0))
                     << (isLong ? " 999000.000\n" : " 0.000\n");
            } else {
                file << "500000.000 GetReaderType " << token[0] - 'A' << " = \"" << token.substr(1)
                     << "\" 0.000\n";
            }
        }
        file.close();
        simulator::Replay replay(path.string());
        acgreader::CommSettings settings;
        EXPECT_EQ(replay.OpenComm("", 0, settings), 1U);
        std::string answered;
        for (const char call : calls) {
            const std::string result = replay.GetReaderType(static_cast<uint32_t>(call - 'A'), {});
            answered += result.empty() ? "-" : result;
        }
        EXPECT_EQ(answered, results) << log;
    }
}

} // namespace
