#include "tool/Output.h"

#include "tool/System.h"
#include "tool/Text.h"

#include <cstdio>

namespace acg::tool
{

namespace
{

/// Each line with its end.
std::string PrintableLines(std::string_view text)
{
    std::string lines;
    text.remove_suffix(text.ends_with('\n') ? 1 : 0);
    for (const std::string_view line : Split(text, '\n')) {
        lines += Printable(line) + '\n';
    }
    return lines;
}

} // namespace

void Output::Print(std::string_view text) const
{
    if (!IsJson) {
        std::fputs(PrintableLines(text).c_str(), stdout);
    }
}

void Output::Problem(std::string_view text)
{
    PrintProblem(text);
    Json["problems"].push_back(text);
}

bool Output::Finish()
{
    if (IsJson && !(HasFinished && Json.empty())) {
        Json.emplace("failure", nullptr);
        // In ASCII, so that a terminal takes nothing in it for a command; what isn't UTF-8 is replaced.
        std::puts(Json.dump(/*indent=*/-1, ' ', /*ensure_ascii=*/true, JsonObject::error_handler_t::replace)
                      .c_str());
    }
    Json = JsonObject::object();
    HasFinished = true;
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void PrintProblem(std::string_view text)
{
    std::fflush(stdout);
    const bool isColoured = IsColourTerminal(stderr);
    const std::string name = isColoured ? "\033[31macg:\033[0m " : "acg: ";
    const std::string_view first = text.substr(0, text.find('\n'));
    const std::string wrapped = IsTerminal(stderr) ? Wrap(first, /*indent=*/5) : std::string(first);
    std::fputs((name + PrintableLines(wrapped + std::string(text.substr(first.size())))).c_str(), stderr);
    std::fflush(stderr); // some systems buffer it
}

} // namespace acg::tool
