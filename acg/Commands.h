// The commands. Each prints its result to standard output, returns the exit status, and throws one of
// acg/Failures.h where it can't do what it is asked.
#pragma once

#include "acg/Keys.h"

#include <string>
#include <vector>

namespace acg::tool
{

/// What "trailer", "preview" and "protect" take.
struct AccessOptions {
    std::string Sector;      ///< SECTOR
    std::string Levels;      ///< --levels
    std::string KeysToUse;   ///< --keys of "preview" and "protect"
    std::string ValueBlocks; ///< --value
    std::string NewA;        ///< --new-a
    std::string NewB;        ///< --new-b
    std::string NewKeysFile; ///< --new-keys
    std::string BX;          ///< --bx
    bool IsForGood = false;  ///< --for-good
    bool IsDryRun = false;   ///< --dry-run
    bool IsAgreedTo = false; ///< --yes
};

/// What the command line says; a command reads what it declares in Main.cpp.
struct Options {
    std::string Parameters; ///< --reader
    KeyOptions Key;         ///< --key, --key-file, --as-b
    bool Json = false;      ///< --json
    AccessOptions Access;
    std::string Blocks;             ///< BLOCK, or BLOCK-BLOCK
    std::string Contents;           ///< HEX
    std::string Number;             ///< NUMBER
    std::vector<std::string> Files; ///< FILE
    std::string KeysFile;           ///< --keys
};

int Info(const Options& Options);
int Read(const Options& Options);
int Write(const Options& Options);
int Value(const Options& Options);
int DumpCard(const Options& Options);
int Compare(const Options& Options);
int Trailer(const Options& Options);
int Preview(const Options& Options);
int Protect(const Options& Options);

} // namespace acg::tool
