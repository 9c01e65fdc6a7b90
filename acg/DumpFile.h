// A card in a file: its raw bytes, or, in a file that ends in ".txt", 32 digits a line.
#pragma once

#include "acg/Card.h"
#include "platform/FileReplacement.h"

#include <cstdint>
#include <string>
#include <vector>

namespace acg::tool
{

/// In text an unknown byte is "--", in raw bytes 00, which reads as known.
struct DumpedBlock {
    Block Bytes = {};   ///< of those that aren't known, anything; from a file, 0
    uint16_t Known = 0; ///< bit 0 for byte 0

    bool operator==(const DumpedBlock&) const = default;
};

/// The blocks of a card, from block 0 on.
using Dump = std::vector<DumpedBlock>;

/// Throws UsageError where the file can't be read or isn't a dump.
[[nodiscard]] Dump ReadDump(const std::string& File);

/// A file that has its name once it is complete, and not at all before.
class NewFile
{
public:
    /// Throws UsageError if it can't be created, or if it exists and is to be kept. Leaves nothing behind.
    NewFile(std::string File, ExistingFile Existing);

    /// Throws OtherFailure if it can't be written; a file that was there before is unchanged then.
    void Write(const Dump& Card) const;

private:
    std::string m_name;
    ExistingFile m_existing;
};

} // namespace acg::tool
