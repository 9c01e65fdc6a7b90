#include "acg/CommandLine.h"
#include "acg/Failures.h"
#include "acg/System.h"

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
