#include "tool/Agreement.h"

#include "tool/Failures.h"
#include "tool/System.h"

#include <cstdio>
#include <string_view>

namespace acg::tool
{

void RequireSomebodyToAsk(const Output& out)
{
    if (out.IsJson || !IsTerminal(stdin)) {
        throw UsageError{"there is nobody to ask: give --yes to write, or --dry-run to look"};
    }
}

bool IsAgreedTo(const std::string& what)
{
    std::fflush(stdout);
    std::fprintf(stderr, "Write %s? Type yes: ", what.c_str());
    char answer[8] = {};
    const bool isAnswered = std::fgets(answer, sizeof answer, stdin) != nullptr;
    if (WasInterrupted()) {
        throw Interruption{};
    }
    return isAnswered && std::string_view(answer) == "yes\n";
}

} // namespace acg::tool
