#include "acg/CommandLine.h"
#include "acg/Failures.h"
#include "acg/System.h"

#include <cstdio>
#include <exception>

int main(int count, char* values[])
{
    using namespace acg::tool;
    try {
        PrepareConsole();
        const int status = CommandLine().Run(Arguments(count, values));
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            PrintProblem("standard output can't be written");
            return status == Done ? Failed : status;
        }
        return status;
    } catch (const std::exception& error) { // text that isn't UTF-8, no memory
        PrintProblem(error.what());
        return Failed;
    }
}
