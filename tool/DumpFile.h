// A card in a file: its raw bytes, or, in a file that ends in ".txt", 32 digits a line.
#pragma once

#include "acg/platform/FileReplacement.h"
#include "tool/Card.h"

#include <cstdint>
#include <string>
#include <vector>

namespace acg::tool
{

/// In text an unknown byte is "--", in raw bytes 00. A key of zeros in raw bytes reads as unknown, and so
/// does a sector whose trailer has only zeros.
struct DumpedBlock {
    Block Bytes = {};   ///< an unknown byte has any value; from a text file, 0
    uint16_t Known = 0; ///< bit 0 for byte 0

    bool operator==(const DumpedBlock&) const = default;
};

/// The blocks of a card, from block 0 on.
using Dump = std::vector<DumpedBlock>;

/// The name says that the file has 32 digits a line.
[[nodiscard]] bool IsTextDump(const std::string& name);

/// Throws UsageError if the file can't be read or isn't a dump.
[[nodiscard]] Dump ReadDump(const std::string& name);

/// Throws OtherFailure if the dump ends before that block.
[[nodiscard]] const DumpedBlock& BlockIn(const Dump& card, int32_t number);

/// The first four bytes of block 0; empty if they aren't known.
[[nodiscard]] std::string SerialNumberIn(const Dump& card);

/// Throws UsageError if the file can't be created or replaced, or if it exists and is to be kept. Creates
/// nothing that stays.
void RequireWritable(const std::string& file, ExistingFile existing);

/// Writes the file in one step. Throws OtherFailure if it can't be written; the file is then unchanged.
void WriteDump(const std::string& file, const Dump& card, ExistingFile existing);

} // namespace acg::tool
