// The commands, each in a file of its own.
#pragma once

namespace acg::tool
{

class CommandLine;

void AddInfo(CommandLine& Commands);
void AddRead(CommandLine& Commands);
void AddWrite(CommandLine& Commands);
void AddValue(CommandLine& Commands);
void AddTrailer(CommandLine& Commands);
void AddPreview(CommandLine& Commands);
void AddProtect(CommandLine& Commands);
void AddDump(CommandLine& Commands);
void AddCompare(CommandLine& Commands);

/// In the order in which --help lists them.
inline constexpr void (*AllCommands[])(CommandLine&) = {
    AddInfo, AddRead, AddWrite, AddValue, AddTrailer, AddPreview, AddProtect, AddDump, AddCompare,
};

} // namespace acg::tool
