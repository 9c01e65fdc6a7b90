#include "tool/Agreement.h"

#include "tool/Failures.h"
#include "tool/System.h"

#include <cstdio>

namespace acg::tool
{

namespace
{

/// What is typed, with the end of the line; nothing if the input has ended. Throws Interruption after Ctrl-C.
std::string Answer(const std::string& question)
{
    std::fflush(stdout);
    std::fputs(question.c_str(), stderr);
    std::string answer;
    for (int letter = std::fgetc(stdin); letter != EOF; letter = std::fgetc(stdin)) {
        answer += static_cast<char>(letter);
        if (letter == '\n') {
            break;
        }
    }
    if (WasInterrupted()) {
        throw Interruption{};
    }
    return answer;
}

} // namespace

bool IsSomebodyToAsk(const Output& out)
{
    return !out.IsJson && IsTerminal(stdin);
}

void RequireSomebodyToAsk(const Output& out, const std::string& look)
{
    if (!IsSomebodyToAsk(out)) {
        throw UsageError{"can't ask for confirmation: give --yes to write, or " + look + " to look"};
    }
}

bool IsAgreedTo(const std::string& what)
{
    return Answer("Write " + what + "? Type yes: ") == "yes\n";
}

char Ask(const std::string& question, const std::string& answers)
{
    for (;;) {
        const std::string answer = Answer(question + ' ');
        if (answer.empty()) {
            return answers.back();
        }
        if (answer.size() == 2 && answers.find(answer.front()) != std::string::npos) {
            return answer.front();
        }
    }
}

} // namespace acg::tool
