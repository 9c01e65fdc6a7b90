// The commands. Each prints its result to standard output, returns the exit status, and throws one of
// acg/Failures.h where it can't do what it is asked.
#pragma once

#include "acg/Keys.h"

#include <string>
#include <vector>

namespace acg::tool
{

/// What the command line says; a command reads what it declares in Main.cpp.
struct Options {
    std::string Parameters;         ///< --reader
    KeyOptions Key;                 ///< --key, --key-file, --as-b
    bool Json = false;              ///< --json
    std::string Blocks;             ///< BLOCK, or BLOCK-BLOCK
    std::string Contents;           ///< HEX
    std::string Number;             ///< NUMBER
    std::vector<std::string> Files; ///< FILE
    std::string KeysFile;           ///< --keys
};

int Info(const Options& Options);
int Read(const Options& Options);

} // namespace acg::tool
