#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/System.h"

#include <exception>

int main(int count, char* values[])
{
    using namespace acg::tool;
    try {
        PrepareConsole();
        return CommandLine().Run(Arguments(count, values));
    } catch (const std::exception& error) { // text that isn't UTF-8, no memory
        PrintProblem(error.what());
        return Failed;
    }
}
