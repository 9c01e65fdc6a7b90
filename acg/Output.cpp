#include "acg/Output.h"

#include "acg/System.h"

#include <cstdio>
#include <string>

namespace acg::tool
{

void PrintProblem(std::string_view Text)
{
    std::fflush(stdout);
    const bool isColoured = IsColourTerminal(stderr);
    const std::string name = isColoured ? "\033[31macg:\033[0m " : "acg: ";
    std::fputs((name + std::string(Text) + '\n').c_str(), stderr);
}

} // namespace acg::tool
