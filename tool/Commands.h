// The commands, each in a file of its own.
#pragma once

namespace acg::tool
{

class CommandLine;

void AddInfo(CommandLine& commands);
void AddRead(CommandLine& commands);
void AddWrite(CommandLine& commands);
void AddValue(CommandLine& commands);
void AddTrailer(CommandLine& commands);
void AddPreview(CommandLine& commands);
void AddProtect(CommandLine& commands);
void AddDump(CommandLine& commands);
void AddCompare(CommandLine& commands);

/// In the order in which --help lists them.
inline constexpr void (*AllCommands[])(CommandLine&) = {
    AddInfo, AddRead, AddWrite, AddValue, AddTrailer, AddPreview, AddProtect, AddDump, AddCompare,
};

} // namespace acg::tool
